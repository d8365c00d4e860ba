#pragma once

// Walking a text by user-perceived characters (extended grapheme clusters) and the Unicode
// properties that the speech shaping rules ask of a character. Internal to ReadingCore.

#include "GraphemeBreaks.hpp"

#include <cstddef>
#include <optional>
#include <string_view>
#include <unicode/uchar.h>
#include <unicode/utf16.h>

namespace lectorbell::detail {

// A character's letter, number and whitespace tests look at its first scalar, so that "é"
// written as "e" plus a combining accent is a letter like its precomposed form.
inline char32_t firstScalar(std::u16string_view character) {
    if (character.empty()) {
        return 0;
    }
    std::size_t i = 0;
    UChar32 c = 0;
    U16_NEXT(character.data(), i, character.size(), c);
    return static_cast<char32_t>(c);
}

inline bool isLetterScalar(char32_t c) {
    return u_hasBinaryProperty(static_cast<UChar32>(c), UCHAR_ALPHABETIC);
}
inline bool isNumberScalar(char32_t c) {
    return u_getIntPropertyValue(static_cast<UChar32>(c), UCHAR_NUMERIC_TYPE) != U_NT_NONE;
}
inline bool isWhitespaceScalar(char32_t c) {
    return u_hasBinaryProperty(static_cast<UChar32>(c), UCHAR_WHITE_SPACE);
}

// The one scalar a character is canonically equivalent to ("=" with a combining long solidus
// is "≠"), or no value when it is more than one scalar even after composition.
std::optional<char32_t> singleScalar(std::u16string_view character);

// True when a grapheme boundary falls between two adjacent code points whatever surrounds them:
// both are of the ordinary break classes (other, control, CR, LF), which join no neighbour.
inline bool isIsolatedBreakClass(UChar32 c) {
    if (c < 0x80) {
        return true;
    }
    auto gcb = u_getIntPropertyValue(c, UCHAR_GRAPHEME_CLUSTER_BREAK);
    return gcb == U_GCB_OTHER || gcb == U_GCB_CONTROL || gcb == U_GCB_CR || gcb == U_GCB_LF;
}

// Calls visit(character, utf16Offset) for every character in order; stops early when visit
// returns false and then returns false. Runs of ordinary characters (all of ASCII, most
// letters) are split without the break iterator; ICU's rules decide everywhere else.
template <class Visit>
bool forEachCharacter(std::u16string_view text, Visit&& visit) {
    const char16_t* p = text.data();
    const std::size_t n = text.size();
    std::size_t i = 0;
    while (i < n) {
        // ASCII followed by ASCII (or the end) is a character of its own, except CR before LF.
        if (char16_t u = p[i]; u < 0x80) {
            char16_t v = i + 1 < n ? p[i + 1] : u'\0';
            if (v < 0x80 && !(u == u'\r' && v == u'\n')) {
                if (!visit(text.substr(i, 1), i)) {
                    return false;
                }
                ++i;
                continue;
            }
        }
        std::size_t next = i;
        UChar32 c = 0;
        U16_NEXT(p, next, n, c);
        std::size_t end = next;
        if (next < n) {
            std::size_t after = next;
            UChar32 d = 0;
            U16_NEXT(p, after, n, d);
            bool crlf = c == u'\r' && d == u'\n';
            bool isolated =
                (c < 0x80 && d < 0x80) || (isIsolatedBreakClass(c) && isIsolatedBreakClass(d));
            if (crlf || !isolated) {
                end = static_cast<std::size_t>(
                    graphemeEndAtOrAfter(text, static_cast<std::int64_t>(i) + 1));
            }
        }
        if (!visit(text.substr(i, end - i), i)) {
            return false;
        }
        i = end;
    }
    return true;
}

// After a run of ASCII that ends before offset `end`: where a character walk may take over, a
// grapheme start at or before `end`. Between two ASCII units there is always a boundary except
// inside CR LF, so the run's last character (CR LF counted as one) starts a grapheme.
inline std::size_t asciiRunHandover(std::u16string_view text, std::size_t end) {
    if (end == 0) {
        return 0;
    }
    std::size_t last = end - 1;
    if (text[last] == u'\n' && last > 0 && text[last - 1] == u'\r') {
        --last;
    }
    return last;
}

} // namespace lectorbell::detail
