// Recognition time of a 1280 × 200 band and a 1280 × 800 window (rendered test pages), fast and
// accurate, with an engine initialised beforehand as the workers keep theirs.
//   RecognitionBench [benchmark options]   (render the pages first: ctest -R pages.render)

#include "lectorbell/CoreLog.hpp"
#include "platform/linux/tesseract/ImageFile.hpp"
#include "platform/linux/tesseract/OpenMPEnvironment.hpp"
#include "platform/linux/tesseract/TesseractRecognizer.hpp"

#include <benchmark/benchmark.h>
#include <string>

namespace {

using namespace lectorbell;

void recognise(benchmark::State& state, const std::string& page, int scale,
               platform::RecognitionMode mode) {
    const std::string path =
        std::string{LECTORBELL_RENDERED_PAGES} + "/" + page + "@" + std::to_string(scale) + "x.png";
    auto image = platform::tesseract::readImageFile(path, scale);
    if (!std::holds_alternative<PixelBuffer>(image)) {
        state.SkipWithError(("missing " + path).c_str());
        return;
    }
    platform::tesseract::TesseractRecognizer recognizer;
    recognizer.recognize(std::get<PixelBuffer>(image), mode, {}); // initialises the engine
    std::size_t lines = 0;
    for (auto _ : state) {
        lines = recognizer.recognize(std::get<PixelBuffer>(image), mode, {}).lines.size();
    }
    state.counters["lines"] = static_cast<double>(lines);
}

void registerAll() {
    for (const char* page : {"band", "window"}) {
        for (int scale : {1, 2}) {
            for (auto mode :
                 {platform::RecognitionMode::fast, platform::RecognitionMode::accurate}) {
                std::string name = std::string{page} + "@" + std::to_string(scale) + "x/" +
                                   (mode == platform::RecognitionMode::fast ? "fast" : "accurate");
                benchmark::RegisterBenchmark(name.c_str(), recognise, std::string{page}, scale,
                                             mode)
                    ->Unit(benchmark::kMillisecond)
                    ->Iterations(5);
            }
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    platform::tesseract::ensureOpenMPThreadLimit(argv);
    // Log lines would interleave with the table.
    lectorbell::setCoreLogSink([](std::string_view, std::string_view) {});
    registerAll();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
