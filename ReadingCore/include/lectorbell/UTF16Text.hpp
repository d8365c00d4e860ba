#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace lectorbell {

// A range of UTF-16 code units: (location, length).
struct UTF16Range {
    // The "not found" marker that platform text APIs return as a location.
    static constexpr std::int64_t notFound = std::numeric_limits<std::int64_t>::max();

    std::int64_t location = 0;
    std::int64_t length = 0;

    std::int64_t end() const { return location + length; }
    friend bool operator==(const UTF16Range&, const UTF16Range&) = default;
};

// Every position in the reading core is a UTF-16 offset; these functions snap such offsets to
// whole user-perceived characters (grapheme clusters) before a string is cut.
namespace UTF16Text {

// Start of the grapheme containing offset i (0 below 1, the length at or past the end).
std::int64_t snapDown(std::int64_t i, std::u16string_view s);
// i when a grapheme starts there, else the end of the grapheme containing i.
std::int64_t snapUp(std::int64_t i, std::u16string_view s);
// The range limited to [0, n]; no value for a negative or not-found location, a negative
// length or a negative n.
std::optional<UTF16Range> clamp(UTF16Range range, std::int64_t n);
// The text of the range widened to whole graphemes, or no value when the range is invalid.
std::optional<std::u16string> substring(std::u16string_view s, UTF16Range range);
// The string position of a UTF-16 offset: snapDown(offset).
std::int64_t index(std::u16string_view s, std::int64_t utf16Offset);
// The text from index(s, i) to the end.
std::u16string suffix(std::u16string_view s, std::int64_t fromUTF16);

} // namespace UTF16Text

} // namespace lectorbell
