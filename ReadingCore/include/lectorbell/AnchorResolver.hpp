#pragma once

#include "lectorbell/ReadingModel.hpp"
#include "lectorbell/UTF16Text.hpp"

#include <cstdint>
#include <string_view>
#include <vector>

namespace lectorbell {

// Where reading really starts in a text, and how exactly that start matches the pointer.
struct ResolvedAnchor {
    // UTF-16 offset into the text.
    std::int64_t utf16Offset = 0;
    AnchorPrecision precision = AnchorPrecision::element;

    friend bool operator==(const ResolvedAnchor&, const ResolvedAnchor&) = default;
};

// Moves an offset that a text source believes lies under the pointer to the pointed word, the
// start of its sentence or a paragraph boundary. Never claims more precision than the source.
namespace AnchorResolver {

ResolvedAnchor resolve(std::u16string_view text, std::int64_t utf16Offset,
                       AnchorPrecision sourcePrecision);

// The words (letters, numbers, kana, ideographs: no spaces or punctuation) that Unicode word
// rules find inside `within`, as UTF-16 ranges relative to the whole text. An invalid range
// gives none; one reaching past the end is cut at it.
std::vector<UTF16Range> wordRanges(std::u16string_view text, UTF16Range within);

// The coarser of two precisions.
AnchorPrecision atLeast(AnchorPrecision wanted, AnchorPrecision source);

} // namespace AnchorResolver

} // namespace lectorbell
