#include "cli/VerbIO.hpp"
#include "cli/Verbs.hpp"
#include "lectorbell/ReadingOrderEngine.hpp"
#include "lectorbell/Utf8.hpp"
#include "lectorbell/VisualSelection.hpp"
#include "platform/linux/ImageFile.hpp"
#include "platform/linux/TesseractRecognizer.hpp"

#include <array>
#include <cmath>
#include <cstdio>
#include <iostream>
#include <memory>
#include <optional>
#include <sstream>

namespace lectorbell::cli {

namespace {

struct OcrOptions {
    std::string image;
    std::string at;
    double scale = 1;
    bool fast = false;
    bool selection = false;
    bool json = false;
};

// Exit statuses: 1 for an unusable image or recogniser, 3 for a reading error (nothing found,
// between columns), 4 when --selection finds no highlight.
constexpr int unusableInput = 1;
constexpr int readingFailed = 3;
constexpr int noHighlight = 4;

std::optional<ScreenPoint> parsePoint(const std::string& text) {
    std::istringstream in{text};
    double x = 0;
    double y = 0;
    char comma = 0;
    if (!(in >> x >> comma >> y) || comma != ',' || !in.eof() || !std::isfinite(x) ||
        !std::isfinite(y)) {
        return std::nullopt;
    }
    return ScreenPoint{x, y};
}

// A coordinate in points with at most two decimals ("80", "101.5").
std::string number(double value) {
    if (!std::isfinite(value)) {
        return "0";
    }
    std::array<char, 64> buffer{};
    std::snprintf(buffer.data(), buffer.size(), "%.2f", value);
    std::string text{buffer.data()};
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') {
        text.pop_back();
    }
    return text == "-0" ? "0" : text;
}

void printResult(const OCRReadingResult& result, bool json) {
    if (!json) {
        std::cout << "precision: " << description(result.precision) << '\n'
                  << "confidence: " << rawValue(result.confidence) << '\n';
        for (const ReadingBlock& block : result.blocks) {
            std::cout << rawValue(block.role) << '\t' << toUtf8(block.text) << '\n';
        }
        return;
    }
    std::cout << "{\"precision\": " << jsonString(description(result.precision))
              << ", \"confidence\": " << jsonString(rawValue(result.confidence))
              << ", \"blocks\": [";
    const char* separator = "";
    for (const ReadingBlock& block : result.blocks) {
        const ScreenRect bounds = block.bounds.value_or(ScreenRect{});
        std::cout << separator << "{\"role\": " << jsonString(rawValue(block.role))
                  << ", \"text\": " << jsonString(block.text) << ", \"bounds\": ["
                  << number(bounds.x()) << ", " << number(bounds.y()) << ", "
                  << number(bounds.width()) << ", " << number(bounds.height()) << "]}";
        separator = ", ";
    }
    std::cout << "]}\n";
}

int printError(const ReadingError& error, bool json) {
    if (json) {
        std::cout << "{\"error\": " << jsonString(error.userMessage()) << "}\n";
    } else {
        std::cerr << "lectorbell: " << error.userMessage() << '\n';
    }
    return readingFailed;
}

int printSelection(const std::vector<OCRLine>& lines, const PixelBuffer& image, bool json) {
    std::optional<std::u16string> selected = VisualSelection::selectedText(lines, image);
    if (!selected) {
        return noHighlight;
    }
    if (json) {
        std::cout << "{\"selection\": " << jsonString(*selected) << "}\n";
    } else {
        std::cout << toUtf8(*selected) << '\n';
    }
    return 0;
}

int runOcr(const OcrOptions& options) {
    std::optional<ScreenPoint> pointer;
    if (!options.at.empty()) {
        pointer = parsePoint(options.at);
        if (!pointer) {
            std::cerr << "lectorbell: --at takes two numbers as X,Y\n";
            return unusableInput;
        }
    }
    auto image = platform::readImageFile(options.image, options.scale);
    if (const auto* reason = std::get_if<std::string>(&image)) {
        std::cerr << "lectorbell: " << *reason << '\n';
        return unusableInput;
    }
    const PixelBuffer& pixels = std::get<PixelBuffer>(image);
    platform::TesseractRecognizer recognizer;
    platform::Recognition recognition =
        recognizer.recognize(pixels, options.fast ? platform::RecognitionMode::fast
                                                  : platform::RecognitionMode::accurate);
    if (recognition.failure) {
        std::cerr << "lectorbell: recognition failed: " << *recognition.failure << '\n';
        return unusableInput;
    }
    if (options.selection) {
        return printSelection(recognition.lines, pixels, options.json);
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

void addOcrVerb(CLI::App& app, VerbOutcome& outcome) {
    auto options = std::make_shared<OcrOptions>();
    CLI::App* verb = app.add_subcommand(
        "ocr", "Recognise a PNG as a screen capture whose top-left is (0,0) and print its text in "
               "reading order");
    verb->add_option("IMAGE", options->image, "PNG image")->required();
    verb->add_option("--at", options->at, "Start reading at this point X,Y (in points)");
    verb->add_option("--scale", options->scale, "Image pixels per point (default 1)")
        ->check(CLI::PositiveNumber);
    verb->add_flag("--fast", options->fast, "Fast recognition, as for a band around the pointer");
    verb->add_flag("--selection", options->selection,
                   "Print the highlighted text (exit status 4 when there is none)");
    verb->add_flag("--json", options->json, "Print one JSON object");
    verb->callback([options, &outcome] { outcome.exitStatus = runOcr(*options); });
}

} // namespace lectorbell::cli
