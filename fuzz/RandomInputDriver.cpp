// Runs a fuzz target without libFuzzer: `N` seeded random inputs of up to 2 KiB each, so the
// target's checks run in every test build (and under the sanitizers of the asan preset).
//   <target> [N] [seed]

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
    const long runs = argc > 1 ? std::strtol(argv[1], nullptr, 10) : 10000;
    const unsigned long seed = argc > 2 ? std::strtoul(argv[2], nullptr, 10) : 1;
    std::mt19937 random{static_cast<std::mt19937::result_type>(seed)};
    std::vector<std::uint8_t> input;
    for (long run = 0; run < runs; ++run) {
        input.resize(random() % 2048);
        for (std::uint8_t& byte : input) {
            byte = static_cast<std::uint8_t>(random());
        }
        LLVMFuzzerTestOneInput(input.data(), input.size());
    }
    std::printf("%ld random inputs, seed %lu: no failure\n", runs, seed);
    return 0;
}
