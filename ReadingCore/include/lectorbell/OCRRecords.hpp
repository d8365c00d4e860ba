#pragma once

#include "lectorbell/ReadingModel.hpp"
#include "lectorbell/ScreenGeometry.hpp"
#include "lectorbell/UTF16Text.hpp"

#include <string>
#include <vector>

namespace lectorbell {

struct OCRWord {
    std::u16string text;
    ScreenRect rect;
    // Where the word lies in its line's text.
    UTF16Range utf16Range;

    friend bool operator==(const OCRWord&, const OCRWord&) = default;
};

struct OCRLine {
    std::u16string text;
    ScreenRect rect;
    // 0 to 1.
    float confidence = 0;
    // In reading order; may be empty.
    std::vector<OCRWord> words;

    friend bool operator==(const OCRLine&, const OCRLine&) = default;
};

// What the reading order engine hands back.
struct OCRReadingResult {
    std::vector<ReadingBlock> blocks;
    AnchorPrecision precision = AnchorPrecision::element;
    ConfidenceCategory confidence = ConfidenceCategory::low;

    friend bool operator==(const OCRReadingResult&, const OCRReadingResult&) = default;
};

} // namespace lectorbell
