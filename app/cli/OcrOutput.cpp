#include "cli/OcrOutput.hpp"

#include "cli/VerbIO.hpp"
#include "lectorbell/Utf8.hpp"

#include <array>
#include <cmath>
#include <cstdio>
#include <iostream>
#include <sstream>

namespace lectorbell::cli::ocr {

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

std::string blockJson(const ReadingBlock& block, const char* part) {
    const ScreenRect bounds = block.bounds.value_or(ScreenRect{});
    std::string json = "{";
    if (part != nullptr) {
        json += "\"part\": " + jsonString(std::string_view{part}) + ", ";
    }
    json += "\"role\": " + jsonString(rawValue(block.role)) +
            ", \"text\": " + jsonString(block.text) + ", \"bounds\": [" + number(bounds.x()) +
            ", " + number(bounds.y()) + ", " + number(bounds.width()) + ", " +
            number(bounds.height()) + "]}";
    return json;
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
        std::cout << separator << blockJson(block);
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
    return error.kind() == ReadingError::Kind::textRecognitionUnavailable ? unusableInput
                                                                          : readingFailed;
}

int printSelection(const std::optional<std::u16string>& selected, bool json) {
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

} // namespace lectorbell::cli::ocr
