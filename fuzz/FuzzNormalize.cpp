#include "FuzzInput.hpp"
#include "lectorbell/NumberSpeech.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    lectorbell::NumberSpeech::normalize(lectorbell::fuzz::unitsOf(data, size));
    return 0;
}
