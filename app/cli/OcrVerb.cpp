#include "cli/OcrOutput.hpp"
#include "cli/ScreenOcr.hpp"
#include "cli/VerbIO.hpp"
#include "cli/Verbs.hpp"
#include "lectorbell/ReadingOrderEngine.hpp"
#include "lectorbell/Utf8.hpp"
#include "lectorbell/VisualSelection.hpp"
#include "platform/Platform.hpp"

#include <array>
#include <cmath>
#include <cstdio>
#include <iostream>
#include <memory>
#include <optional>
#include <sstream>

namespace lectorbell::cli {

using namespace ocr;

namespace {

struct OcrOptions {
    std::string image;
    std::string at;
    double scale = 1;
    bool fast = false;
    bool selection = false;
    bool json = false;
    bool screen = false;
};

int runOcr(platform::Platform& platform, const OcrOptions& options) {
    if (options.screen != options.image.empty()) {
        std::cerr << "lectorbell: give either an IMAGE or --screen\n";
        return unusableInput;
    }
    std::optional<ScreenPoint> pointer;
    if (!options.at.empty()) {
        pointer = cli::parsePoint(options.at);
        if (!pointer) {
            std::cerr << "lectorbell: --at takes two numbers as X,Y\n";
            return unusableInput;
        }
    }
    if (options.screen) {
        if (!pointer) {
            std::cerr << "lectorbell: --screen needs --at X,Y\n";
            return unusableInput;
        }
        return runScreenOcr(platform, *pointer, options.selection, options.json);
    }
    auto image = platform.readImageFile(options.image, options.scale);
    if (const auto* reason = std::get_if<std::string>(&image)) {
        std::cerr << "lectorbell: " << *reason << '\n';
        return unusableInput;
    }
    const PixelBuffer& pixels = std::get<PixelBuffer>(image);
    std::unique_ptr<platform::TextRecognizer> recognizer = platform.textRecognizer();
    platform::Recognition recognition = recognizer->recognize(
        pixels,
        options.fast ? platform::RecognitionMode::fast : platform::RecognitionMode::accurate, {});
    if (recognition.failure) {
        const platform::RecognitionFailure& failure = *recognition.failure;
        if (failure.kind == platform::RecognitionFailure::Kind::engineUnavailable &&
            !failure.missingPackage.empty()) {
            return printError(ReadingError::textRecognitionUnavailable(failure.missingPackage),
                              options.json);
        }
        std::cerr << "lectorbell: recognition failed: " << failure.detail << '\n';
        return unusableInput;
    }
    if (options.selection) {
        return printSelection(VisualSelection::selectedText(recognition.lines, pixels),
                              options.json);
    }
    if (!pointer && !options.json) {
        std::vector<std::u16string> texts =
            ReadingOrderEngine::orderedParagraphTexts(recognition.lines);
        if (texts.empty()) {
            return printError(ReadingError{ReadingError::Kind::ocrFoundNothing}, false);
        }
        for (const std::u16string& text : texts) {
            std::cout << toUtf8(text) << '\n';
        }
        return 0;
    }
    ReadingOrderEngine::ReadOutcome outcome =
        pointer ? ReadingOrderEngine::read(recognition.lines, *pointer)
                : ReadingOrderEngine::readAll(recognition.lines);
    if (const auto* error = std::get_if<ReadingError>(&outcome)) {
        return printError(*error, options.json);
    }
    printResult(std::get<OCRReadingResult>(outcome), options.json);
    return 0;
}

} // namespace

void addOcrVerb(CLI::App& app, VerbOutcome& outcome, platform::Platform& platform) {
    auto options = std::make_shared<OcrOptions>();
    CLI::App* verb = app.add_subcommand(
        "ocr", "Recognise a PNG as a screen capture whose top-left is (0,0) and print its text in "
               "reading order");
    verb->add_option("IMAGE", options->image, "PNG image");
    verb->add_flag("--screen", options->screen,
                   "Capture the window under --at on this display instead of reading an image");
    verb->add_option("--at", options->at, "Start reading at this point X,Y (in points)");
    verb->add_option("--scale", options->scale, "Image pixels per point (default 1)")
        ->check(CLI::PositiveNumber);
    verb->add_flag("--fast", options->fast, "Fast recognition, as for a band around the pointer");
    verb->add_flag("--selection", options->selection,
                   "Print the highlighted text (exit status 4 when there is none)");
    verb->add_flag("--json", options->json, "Print one JSON object");
    verb->callback(
        [options, &outcome, &platform] { outcome.exitStatus = runOcr(platform, *options); });
}

} // namespace lectorbell::cli
