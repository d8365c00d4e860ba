#include "lectorbell/VisualSelection.hpp"

#include "LayoutGeometry.hpp"
#include "TextTrim.hpp"
#include "lectorbell/UTF16Text.hpp"

#include <algorithm>
#include <unicode/uchar.h>

namespace lectorbell::VisualSelection {

namespace {

struct Sample {
    Colour colour;
    double luminance = 0;
};

} // namespace

std::optional<Colour> background(const ScreenRect& rect, const PixelBuffer& image) {
    if (!image.isWellFormed()) {
        return std::nullopt;
    }
    std::optional<PixelBuffer::PixelRect> pixels = image.pixelRect(rect);
    if (!pixels) {
        return std::nullopt;
    }
    const std::int64_t left = std::max<std::int64_t>(pixels->left, 0);
    const std::int64_t top = std::max<std::int64_t>(pixels->top, 0);
    const std::int64_t right = std::min(pixels->right, image.width);
    const std::int64_t bottom = std::min(pixels->bottom, image.height);
    if (left >= right || top >= bottom) {
        return std::nullopt;
    }
    // About 24 × 8 samples whatever the word's size.
    const std::int64_t w = right - left;
    const std::int64_t h = bottom - top;
    const std::int64_t stepX = w > 23 ? w / 24 : 1;
    const std::int64_t stepY = h >= 8 ? h / 8 : 1;
    std::vector<Sample> samples;
    for (std::int64_t y = top; y < bottom; y += stepY) {
        for (std::int64_t x = left; x < right; x += stepX) {
            const auto at = static_cast<std::size_t>((y * image.width + x) * 4);
            Colour c{static_cast<double>(image.bytes[at]), static_cast<double>(image.bytes[at + 1]),
                     static_cast<double>(image.bytes[at + 2])};
            samples.push_back({c, 0.299 * c.r + 0.587 * c.g + 0.114 * c.b});
        }
    }
    // Brightest first: behind dark text, the background is the bright part of the box.
    std::stable_sort(samples.begin(), samples.end(),
                     [](const Sample& a, const Sample& b) { return a.luminance > b.luminance; });
    const std::size_t n = samples.size();
    const std::size_t k = n > 2 ? (2 * n) / 5 : 1;
    Colour mean;
    for (std::size_t i = 0; i < k; ++i) {
        mean.r += samples[i].colour.r;
        mean.g += samples[i].colour.g;
        mean.b += samples[i].colour.b;
    }
    const auto count = static_cast<double>(k);
    return Colour{mean.r / count, mean.g / count, mean.b / count};
}

bool isHighlight(const std::optional<Colour>& colour) {
    if (!colour) {
        return false;
    }
    const Colour& c = *colour;
    return c.b >= 190 && c.b - c.r >= 28 && c.b - c.g >= 6 && c.r >= 90 && c.r <= 238;
}

std::int64_t trailingPunctuationEnd(std::u16string_view text, std::int64_t offset) {
    const auto n = static_cast<std::int64_t>(text.size());
    std::int64_t i = std::clamp<std::int64_t>(offset, 0, n);
    while (i < n) {
        const char16_t unit = text[static_cast<std::size_t>(i)];
        if (U16_IS_SURROGATE(unit)) {
            break;
        }
        const auto category = U_GET_GC_MASK(unit);
        const bool punctuation = (category & U_GC_P_MASK) != 0;
        const bool symbol = (category & U_GC_S_MASK) != 0 && !u_isUWhiteSpace(unit);
        if (!punctuation && !symbol) {
            break;
        }
        ++i;
    }
    return i;
}

namespace {

// The line's part from its first highlighted word to its last, with trailing punctuation.
std::optional<std::u16string> highlightedPart(const OCRLine& line, const PixelBuffer& image) {
    std::vector<const OCRWord*> marked;
    for (const OCRWord& word : line.words) {
        if (isHighlight(background(word.rect, image))) {
            marked.push_back(&word);
        }
    }
    if (marked.empty()) {
        return std::nullopt;
    }
    const std::int64_t start = marked.front()->utf16Range.location;
    const std::int64_t end = trailingPunctuationEnd(line.text, marked.back()->utf16Range.end());
    if (start >= 0 && start <= end && marked.back()->utf16Range.end() <= end) {
        if (auto part = UTF16Text::substring(line.text, {start, end - start})) {
            return part;
        }
    }
    std::u16string joined;
    for (const OCRWord* word : marked) {
        joined += joined.empty() ? word->text : u" " + word->text;
    }
    return joined;
}

} // namespace

std::optional<std::u16string> selectedText(const std::vector<OCRLine>& lines,
                                           const PixelBuffer& image) {
    std::vector<const OCRLine*> ordered;
    ordered.reserve(lines.size());
    for (const OCRLine& line : lines) {
        ordered.push_back(&line);
    }
    std::stable_sort(ordered.begin(), ordered.end(), [](const OCRLine* a, const OCRLine* b) {
        return detail::topThenLeft(a->rect, b->rect);
    });
    std::u16string text;
    for (const OCRLine* line : ordered) {
        if (std::optional<std::u16string> part = highlightedPart(*line, image)) {
            text += text.empty() ? *part : u" " + *part;
        }
    }
    std::u16string_view trimmed = detail::trimWhitespace(text);
    if (trimmed.empty()) {
        return std::nullopt;
    }
    return std::u16string{trimmed};
}

std::optional<IntegerColour> bluestBackground(const std::vector<OCRLine>& lines,
                                              const PixelBuffer& image) {
    std::optional<Colour> bluest;
    for (const OCRLine& line : lines) {
        for (const OCRWord& word : line.words) {
            std::optional<Colour> colour = background(word.rect, image);
            if (colour && (!bluest || colour->b - colour->r > bluest->b - bluest->r)) {
                bluest = colour;
            }
        }
    }
    if (!bluest) {
        return std::nullopt;
    }
    return IntegerColour{static_cast<int>(bluest->r), static_cast<int>(bluest->g),
                         static_cast<int>(bluest->b)};
}

std::vector<OCRLine> onPages(const std::vector<OCRLine>& lines,
                             const std::vector<ScreenRect>& pages) {
    if (pages.empty()) {
        return lines;
    }
    std::vector<OCRLine> kept;
    for (const OCRLine& line : lines) {
        const ScreenPoint centre{line.rect.midX(), line.rect.midY()};
        if (std::any_of(pages.begin(), pages.end(),
                        [&](const ScreenRect& page) { return page.contains(centre); })) {
            kept.push_back(line);
        }
    }
    return kept;
}

} // namespace lectorbell::VisualSelection
