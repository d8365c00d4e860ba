#include "TextClasses.hpp"

#include "GraphemeBreaks.hpp"

#include <unicode/locid.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utf16.h>

namespace lectorbell::detail {

bool isHorizontalWhitespace(char32_t c) {
    return c == u'\t' || u_charType(static_cast<UChar32>(c)) == U_SPACE_SEPARATOR;
}

bool isNewline(char32_t c) {
    return (c >= 0x0A && c <= 0x0D) || c == 0x85 || c == 0x2028 || c == 0x2029;
}

bool isWhitespaceOrNewline(char32_t c) {
    return isHorizontalWhitespace(c) || isNewline(c);
}

char32_t scalarAt(std::u16string_view s, std::size_t i) {
    UChar32 c = 0;
    U16_NEXT(s.data(), i, s.size(), c);
    return static_cast<char32_t>(c);
}

char32_t scalarBefore(std::u16string_view s, std::size_t i) {
    UChar32 c = 0;
    U16_PREV(s.data(), 0, i, c);
    return static_cast<char32_t>(c);
}

std::u16string_view firstCharacter(std::u16string_view s) {
    if (s.empty()) {
        return s;
    }
    auto end = s.size() < 2 ? s.size() : static_cast<std::size_t>(graphemeEndAtOrAfter(s, 1));
    return s.substr(0, end);
}

std::u16string_view lastCharacter(std::u16string_view s) {
    if (s.empty()) {
        return s;
    }
    auto length = static_cast<std::int64_t>(s.size());
    auto start = length < 2 ? 0 : static_cast<std::size_t>(graphemeStartAtOrBefore(s, length - 1));
    return s.substr(start);
}

namespace {

bool isSingleScalar(std::u16string_view character) {
    return !character.empty() && U16_LENGTH(scalarAt(character, 0)) == character.size();
}

icu::UnicodeString unicodeString(std::u16string_view s) {
    return icu::UnicodeString(s.data(), static_cast<int32_t>(s.size()));
}

} // namespace

bool isLowercaseCharacter(std::u16string_view character) {
    if (character.empty()) {
        return false;
    }
    if (isSingleScalar(character)) {
        return u_hasBinaryProperty(static_cast<UChar32>(scalarAt(character, 0)), UCHAR_LOWERCASE);
    }
    icu::UnicodeString original = unicodeString(character);
    icu::UnicodeString lower = original;
    icu::UnicodeString upper = original;
    lower.toLower(icu::Locale::getRoot());
    upper.toUpper(icu::Locale::getRoot());
    return lower == original && upper != original;
}

bool isUppercaseCharacter(std::u16string_view character) {
    if (character.empty()) {
        return false;
    }
    if (isSingleScalar(character)) {
        return u_hasBinaryProperty(static_cast<UChar32>(scalarAt(character, 0)), UCHAR_UPPERCASE);
    }
    icu::UnicodeString original = unicodeString(character);
    icu::UnicodeString lower = original;
    icu::UnicodeString upper = original;
    lower.toLower(icu::Locale::getRoot());
    upper.toUpper(icu::Locale::getRoot());
    return upper == original && lower != original;
}

bool isLetterCharacter(std::u16string_view character) {
    return !character.empty() &&
           u_hasBinaryProperty(static_cast<UChar32>(scalarAt(character, 0)), UCHAR_ALPHABETIC);
}

bool isLetterOrDigit(char32_t c) {
    return u_hasBinaryProperty(static_cast<UChar32>(c), UCHAR_ALPHABETIC) ||
           u_isdigit(static_cast<UChar32>(c));
}

std::u16string lowercased(std::u16string_view s) {
    icu::UnicodeString text = unicodeString(s);
    text.toLower(icu::Locale::getRoot());
    return {text.getBuffer(), static_cast<std::size_t>(text.length())};
}

} // namespace lectorbell::detail
