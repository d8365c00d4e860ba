#include "cli/OcrOutput.hpp"

#include "cli/VerbIO.hpp"
#include "lectorbell/Utf8.hpp"

#include <iostream>
#include <nlohmann/json.hpp>

namespace lectorbell::cli::ocr {

nlohmann::ordered_json blockJson(const ReadingBlock& block, const char* part) {
    const ScreenRect bounds = block.bounds.value_or(ScreenRect{});
    nlohmann::ordered_json object = nlohmann::ordered_json::object();
    if (part != nullptr) {
        object["part"] = part;
    }
    object["role"] = rawValue(block.role);
    object["text"] = toUtf8(block.text);
    object["bounds"] = {pointsNumber(bounds.x()), pointsNumber(bounds.y()),
                        pointsNumber(bounds.width()), pointsNumber(bounds.height())};
    return object;
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
    nlohmann::ordered_json blocks = nlohmann::ordered_json::array();
    for (const ReadingBlock& block : result.blocks) {
        blocks.push_back(blockJson(block));
    }
    std::cout << jsonLine({{"precision", description(result.precision)},
                           {"confidence", rawValue(result.confidence)},
                           {"blocks", blocks}})
              << '\n';
}

int printError(const ReadingError& error, bool json) {
    if (json) {
        std::cout << jsonLine({{"error", error.userMessage()}}) << '\n';
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
        std::cout << jsonLine({{"selection", toUtf8(*selected)}}) << '\n';
    } else {
        std::cout << toUtf8(*selected) << '\n';
    }
    return 0;
}

} // namespace lectorbell::cli::ocr
