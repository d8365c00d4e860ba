#pragma once

#include "lectorbell/OCRRecords.hpp"
#include "lectorbell/PixelBuffer.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace lectorbell {

// Finds a highlight that exists only as pixels: the words that sit on a selection-blue
// background in a captured image.
namespace VisualSelection {

// A colour on the 0 to 255 scale.
struct Colour {
    double r = 0;
    double g = 0;
    double b = 0;

    friend bool operator==(const Colour&, const Colour&) = default;
};

struct IntegerColour {
    int r = 0;
    int g = 0;
    int b = 0;

    friend bool operator==(const IntegerColour&, const IntegerColour&) = default;
};

// The mean colour of the brightest two fifths of a grid of samples behind the rectangle: for
// dark text on a light background, that is the background. Nothing when no pixel of the
// rectangle lies in the image.
std::optional<Colour> background(const ScreenRect& rect, const PixelBuffer& image);

// The system's light-blue selection colour, within its thresholds.
bool isHighlight(const std::optional<Colour>& background);

// The highlighted text, lines top to bottom and left to right, or nothing.
std::optional<std::u16string> selectedText(const std::vector<OCRLine>& lines,
                                           const PixelBuffer& image);

// The word background with the largest blue excess (b − r), the first on a tie.
std::optional<IntegerColour> bluestBackground(const std::vector<OCRLine>& lines,
                                              const PixelBuffer& image);

// The UTF-16 offset after the punctuation and symbols that directly follow `offset`, so a
// highlight ending at a word also takes the full stop or closing quote after it. Stops at white
// space and at surrogates (an emoji is never taken in).
std::int64_t trailingPunctuationEnd(std::u16string_view text, std::int64_t offset);

// The lines whose centre lies in one of the document pages. With no pages known, every line.
std::vector<OCRLine> onPages(const std::vector<OCRLine>& lines,
                             const std::vector<ScreenRect>& pages);

} // namespace VisualSelection

} // namespace lectorbell
