#include "TextTrim.hpp"

#include <unicode/uchar.h>
#include <unicode/utf16.h>

namespace lectorbell::detail {

namespace {

template <class Trimmed>
std::u16string_view trim(std::u16string_view text, Trimmed trimmed) {
    const char16_t* p = text.data();
    std::size_t start = 0;
    std::size_t end = text.size();
    while (start < end) {
        std::size_t next = start;
        UChar32 c = 0;
        U16_NEXT(p, next, end, c);
        if (!trimmed(c)) {
            break;
        }
        start = next;
    }
    while (end > start) {
        std::size_t previous = end;
        UChar32 c = 0;
        U16_PREV(p, start, previous, c);
        if (!trimmed(c)) {
            break;
        }
        end = previous;
    }
    return text.substr(start, end - start);
}

} // namespace

std::u16string_view trimSpacesAndTabs(std::u16string_view text) {
    return trim(text, [](UChar32 c) { return c == u'\t' || u_charType(c) == U_SPACE_SEPARATOR; });
}

std::u16string_view trimWhitespace(std::u16string_view text) {
    return trim(text, [](UChar32 c) { return u_hasBinaryProperty(c, UCHAR_WHITE_SPACE); });
}

} // namespace lectorbell::detail
