#pragma once

// Recognised lines for tests: words laid out in a monospaced way, like a recogniser reports them.

#include "lectorbell/OCRRecords.hpp"

#include <string>

namespace lectorbell::test {

// A line of `text` whose top-left is (x, y), each character `charWidth` wide, `height` high.
inline OCRLine ocrLine(std::u16string text, double x, double y, double height = 12,
                       double charWidth = 6, float confidence = 0.95F) {
    OCRLine line{text,
                 ScreenRect{x, y, charWidth * static_cast<double>(text.size()), height},
                 confidence,
                 {}};
    std::size_t start = 0;
    while (start < text.size()) {
        if (text[start] == u' ') {
            ++start;
            continue;
        }
        std::size_t end = text.find(u' ', start);
        end = end == std::u16string::npos ? text.size() : end;
        line.words.push_back(
            {text.substr(start, end - start),
             ScreenRect{x + charWidth * static_cast<double>(start), y,
                        charWidth * static_cast<double>(end - start), height},
             {static_cast<std::int64_t>(start), static_cast<std::int64_t>(end - start)}});
        start = end;
    }
    return line;
}

} // namespace lectorbell::test
