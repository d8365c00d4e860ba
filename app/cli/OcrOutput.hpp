#pragma once

#include "lectorbell/OCRRecords.hpp"
#include "lectorbell/ReadingModel.hpp"

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

namespace lectorbell::cli::ocr {

// Exit statuses: 1 for an unusable image, recogniser or argument (a recogniser that cannot start
// included), 3 for a reading error (nothing found, between columns, no window), 4 when
// --selection finds no highlight.
constexpr int unusableInput = 1;
constexpr int readingFailed = 3;
constexpr int noHighlight = 4;

// One block as a JSON object; with a part name ("band", "rest") that comes first.
nlohmann::ordered_json blockJson(const ReadingBlock& block, const char* part = nullptr);
void printResult(const OCRReadingResult& result, bool json);
// The error's message (JSON on standard output, else on standard error); returns its status.
int printError(const ReadingError& error, bool json);
// The highlighted text; returns noHighlight (printing nothing) when there is none.
int printSelection(const std::optional<std::u16string>& selected, bool json);

} // namespace lectorbell::cli::ocr
