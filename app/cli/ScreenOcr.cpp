#include "cli/ScreenOcr.hpp"

#include "cli/OcrOutput.hpp"
#include "cli/VerbIO.hpp"
#include "lectorbell/Diagnostics.hpp"
#include "lectorbell/Utf8.hpp"
#include "lectorbell/VisualSelection.hpp"
#include "platform/Platform.hpp"
#include "sources/ScreenReader.hpp"

#include <iostream>
#include <nlohmann/json.hpp>

namespace lectorbell::cli {

namespace {

struct Part {
    const char* name;
    const std::vector<ReadingBlock>* blocks;
};

// The band's blocks, then the blocks added below it, each marked with its part.
void print(const sources::BandReading& first, const std::vector<ReadingBlock>& rest,
           std::int64_t restMS, bool json) {
    const Part parts[] = {{"band", &first.result.blocks}, {"rest", &rest}};
    if (json) {
        nlohmann::ordered_json blocks = nlohmann::ordered_json::array();
        for (const Part& part : parts) {
            for (const ReadingBlock& block : *part.blocks) {
                blocks.push_back(ocr::blockJson(block, part.name));
            }
        }
        std::cout << jsonLine({{"precision", description(first.result.precision)},
                               {"confidence", rawValue(first.result.confidence)},
                               {"wholeWindow", first.wholeWindow},
                               {"blocks", blocks},
                               {"timings",
                                {{"capture", first.captureMS},
                                 {"band", first.bandMS},
                                 {"layout", first.layoutMS},
                                 {"rest", restMS}}}})
                  << '\n';
        return;
    }
    std::cout << "precision: " << description(first.result.precision) << '\n'
              << "confidence: " << rawValue(first.result.confidence) << '\n';
    for (const Part& part : parts) {
        for (const ReadingBlock& block : *part.blocks) {
            std::cout << part.name << '\t' << rawValue(block.role) << '\t' << toUtf8(block.text)
                      << '\n';
        }
    }
    std::cout << "timings: capture " << first.captureMS << "ms, band " << first.bandMS
              << "ms, layout " << first.layoutMS << "ms, rest " << restMS << "ms"
              << (first.wholeWindow ? " (whole window read at once)" : "") << '\n';
}

} // namespace

int runScreenOcr(platform::Platform& platform, ScreenPoint at, bool selection, bool json) {
    std::unique_ptr<platform::WindowLocator> locator = platform.windowLocator();
    std::shared_ptr<platform::ScreenCapturer> capturer = platform.screenCapturer();
    if (!locator || !capturer) {
        return ocr::printError(ReadingError{ReadingError::Kind::screenCapturePermissionNeeded},
                               json);
    }
    std::optional<platform::TargetWindow> window = locator->window(at);
    if (!window) {
        return ocr::printError(ReadingError{ReadingError::Kind::noExternalWindow}, json);
    }
    sources::ScreenOCR reader{capturer, [&platform] { return platform.textRecognizer(); }};
    // Nothing here cancels a lookup: every outcome is a result or an error.
    if (selection) {
        sources::ScreenOutcome outcome = reader.recognizeWithPixels(*window, std::nullopt).get();
        if (const auto* error = std::get_if<ReadingError>(&outcome)) {
            return ocr::printError(*error, json);
        }
        const auto& recognition = std::get<sources::ScreenRecognition>(outcome);
        return ocr::printSelection(
            VisualSelection::selectedText(recognition.lines, *recognition.image), json);
    }
    sources::ScreenReader bands{reader};
    sources::BandOutcome first = bands.readBand(*window, at);
    if (const auto* error = std::get_if<ReadingError>(&first)) {
        return ocr::printError(*error, json);
    }
    const auto& band = std::get<sources::BandReading>(first);
    std::uint64_t start = monotonicUptimeNanoseconds();
    sources::RestOutcome rest = bands.readRest(band);
    auto restMS = static_cast<std::int64_t>((monotonicUptimeNanoseconds() - start) / 1'000'000);
    std::vector<ReadingBlock> added;
    if (auto* blocks = std::get_if<std::vector<ReadingBlock>>(&rest)) {
        added = std::move(*blocks);
    }
    print(band, added, restMS, json);
    return 0;
}

} // namespace lectorbell::cli
