#pragma once

// Character classes and trimming shared by the segmentation code. Internal to ReadingCore.

#include <cstdint>
#include <string>
#include <string_view>

namespace lectorbell::detail {

// Tab and every space separator (Zs).
bool isHorizontalWhitespace(char32_t c);
// LF, VT, FF, CR, U+0085, U+2028, U+2029.
bool isNewline(char32_t c);
bool isWhitespaceOrNewline(char32_t c);

// The scalar starting at offset i (an unpaired surrogate stands for itself).
char32_t scalarAt(std::u16string_view s, std::size_t i);
// The scalar ending just before offset i.
char32_t scalarBefore(std::u16string_view s, std::size_t i);

// Whole user-perceived characters (grapheme clusters).
std::u16string_view firstCharacter(std::u16string_view s);
std::u16string_view lastCharacter(std::u16string_view s);

// A one-scalar character with the Lowercase property, or a longer one that lower-casing leaves
// alone and upper-casing changes.
bool isLowercaseCharacter(std::u16string_view character);
bool isUppercaseCharacter(std::u16string_view character);
// Judged by the character's first scalar (Alphabetic).
bool isLetterCharacter(std::u16string_view character);
bool isLetterOrDigit(char32_t c);

std::u16string lowercased(std::u16string_view s);

} // namespace lectorbell::detail
