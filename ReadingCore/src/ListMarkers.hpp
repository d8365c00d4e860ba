#pragma once

// List markers ("1.", "2.)", "a.", "(b)", "•") where sentences are cut. Internal to ReadingCore.

#include <cstddef>
#include <string_view>

namespace lectorbell::detail {

// The length of a list marker at the start of s with the spaces after it ("1. ", "12) ",
// "3.) ", "(4) ", "a. ", "b) ", "(c) ", "iv. ", "II. ", "• "); 0 when there is none. Single
// letters are lower-case only: "A. Smith" starts with an initial.
std::size_t listMarkerLength(std::u16string_view s);

// Whether s, leading and trailing whitespace aside, is a list marker and nothing else.
bool isListMarker(std::u16string_view s);

// Whether s starts with a one-letter marker ("a. ", "b) ", "(c) ").
bool startsWithLetterMarker(std::u16string_view s);

// "1." alone, or after a colon or semicolon ("Steps: 1."): an inline list number, not the end of
// a sentence.
bool endsWithListNumber(std::u16string_view s);

// How much of the range [start, end) of text is a list marker that starts the next sentence,
// whose text is next: "item 2.) " before "The second", or "item b. " before "The second" when
// the letters run in order ("a." came before). 0 when nothing is carried.
std::size_t listMarkerToCarryForward(std::u16string_view text, std::size_t start, std::size_t end,
                                     std::u16string_view next);

} // namespace lectorbell::detail
