#pragma once

#include <string_view>

namespace lectorbell::TextSpace {

// Spaces, tabs, line breaks, no-break spaces and the object replacement character that stands
// for an embedded element: what separates words in text from an accessibility tree.
inline bool isSpace(char16_t c) {
    return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r' || c == u'\u00A0' ||
           c == u'\u2028' || c == u'\u2029' || c == u'\uFFFC';
}

// Nothing but such characters (or nothing at all).
inline bool isBlank(std::u16string_view text) {
    for (char16_t c : text) {
        if (!isSpace(c)) {
            return false;
        }
    }
    return true;
}

} // namespace lectorbell::TextSpace
