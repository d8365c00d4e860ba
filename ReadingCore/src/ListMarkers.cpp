#include "ListMarkers.hpp"

#include "TextClasses.hpp"
#include "TextTrim.hpp"

#include <algorithm>
#include <string>

namespace lectorbell::detail {

namespace {

bool isDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}

bool isAsciiLowercase(char16_t c) {
    return c >= u'a' && c <= u'z';
}

bool isBullet(char16_t c) {
    return std::u16string_view{u"\u2022\u25AA\u25E6\u25CF\u2023\u2219"}.find(c) !=
           std::u16string_view::npos;
}

// The length of the roman numeral at the start of s: "iv" or "IV", but not a lone "I", "V" or
// "X", which are initials.
std::size_t romanNumeralLength(std::u16string_view s) {
    const std::u16string_view lower = u"ivx";
    const std::u16string_view upper = u"IVX";
    const std::size_t lowerRun = std::min(s.find_first_not_of(lower), s.size());
    const std::size_t upperRun = std::min(s.find_first_not_of(upper), s.size());
    if (lowerRun > 0) {
        return lowerRun <= 4 ? lowerRun : 0;
    }
    return upperRun >= 2 && upperRun <= 4 ? upperRun : 0;
}

// The end of the marker itself at the start of s (spaces not included), or 0.
std::size_t markerEnd(std::u16string_view s) {
    if (s.empty()) {
        return 0;
    }
    if (isBullet(s[0])) {
        return 1;
    }
    const bool paren = s[0] == u'(';
    std::size_t i = paren ? 1 : 0;
    const std::size_t digitsStart = i;
    while (i < s.size() && isDigit(s[i]) && i - digitsStart < 4) {
        ++i;
    }
    const std::size_t digits = i - digitsStart;
    if (digits > 3) {
        return 0;
    }
    if (digits == 0) {
        const std::size_t roman = romanNumeralLength(s.substr(i));
        if (roman > 0) {
            i += roman;
        } else if (i < s.size() && isAsciiLowercase(s[i])) {
            ++i;
        } else {
            return 0;
        }
    }
    if (paren) {
        return i < s.size() && s[i] == u')' ? i + 1 : 0;
    }
    if (i < s.size() && s[i] == u'.') {
        ++i;
        // "3.)"
        return i < s.size() && s[i] == u')' && digits > 0 ? i + 1 : i;
    }
    return i < s.size() && s[i] == u')' ? i + 1 : 0;
}

// Where a list number such as "1.", "2)" or "3.)" starts at the end of s (trailing whitespace
// ignored), or npos.
std::size_t trailingListNumber(std::u16string_view s) {
    s = trimWhitespace(s);
    std::size_t i = s.size();
    bool paren = i > 0 && s[i - 1] == u')';
    i -= paren ? 1 : 0;
    bool dot = i > 0 && s[i - 1] == u'.';
    i -= dot ? 1 : 0;
    if (!paren && !dot) {
        return std::u16string_view::npos;
    }
    std::size_t digitsEnd = i;
    while (i > 0 && isDigit(s[i - 1])) {
        --i;
    }
    if (i == digitsEnd || digitsEnd - i > 3) {
        return std::u16string_view::npos;
    }
    if (i > 0 && s[i - 1] == u'(') {
        --i;
    }
    if (i > 0 && !isHorizontalWhitespace(s[i - 1])) {
        return std::u16string_view::npos;
    }
    return i;
}

// "item 2.)" at the end of a range: the number starts the next sentence. Only markers with a
// parenthesis: "in 1990." is a year, not a list.
std::size_t numberToCarryForward(std::u16string_view s) {
    std::size_t start = trailingListNumber(s);
    std::u16string_view trimmed = trimWhitespace(s);
    if (start == std::u16string_view::npos || start == 0 || trimmed.back() != u')' ||
        endsWithListNumber(s)) {
        return 0;
    }
    return s.size() - start;
}

// Whether the letter marker before `letter` ("a." for "b.") stands in text as a marker, not
// further back than a list item may be long.
bool hasPreviousLetterMarker(std::u16string_view text, char16_t letter, char16_t closer) {
    constexpr std::size_t itemReach = 2000;
    text = text.substr(text.size() - std::min(text.size(), itemReach));
    const std::u16string marker{static_cast<char16_t>(letter - 1), closer, u' '};
    for (std::size_t at = text.find(marker); at != std::u16string_view::npos;
         at = text.find(marker, at + 1)) {
        if (at == 0 || isWhitespaceOrNewline(text[at - 1])) {
            return true;
        }
    }
    return false;
}

// "item b. " before "The second item": the letter is the next list item's marker, unless the
// letters do not run in order ("vitamin c." with no "b." before it) or it follows a colon
// ("Choose: a. The red one" keeps its first item, as list numbers do).
std::size_t letterToCarryForward(std::u16string_view text, std::size_t start, std::size_t end,
                                 std::u16string_view next) {
    std::u16string_view range = text.substr(start, end - start);
    // Most ranges end in a letter or a full stop after a word: let go before any Unicode lookup.
    const std::size_t last = range.find_last_not_of(u" \t\n\r");
    if (last == std::u16string_view::npos || last < 3 ||
        (range[last] < 0x80 && range[last] != u'.' && range[last] != u')') ||
        (range[last - 1] < 0x80 && !isAsciiLowercase(range[last - 1]))) {
        return 0;
    }
    std::u16string_view trimmed = trimWhitespace(range);
    const std::size_t n = trimmed.size();
    if (n < 4 || (trimmed[n - 1] != u'.' && trimmed[n - 1] != u')') ||
        !isAsciiLowercase(trimmed[n - 2]) || !isHorizontalWhitespace(trimmed[n - 3])) {
        return 0;
    }
    std::u16string_view head = trimSpacesAndTabs(trimmed.substr(0, n - 3));
    std::u16string_view following = trimWhitespace(next);
    if (head.empty() || head.back() == u':' || head.back() == u';' ||
        !isUppercaseCharacter(firstCharacter(following))) {
        return 0;
    }
    const std::size_t letterAt = static_cast<std::size_t>(trimmed.data() - text.data()) + n - 2;
    const char16_t letter = trimmed[n - 2];
    if (letter != u'a' &&
        !hasPreviousLetterMarker(text.substr(0, letterAt), letter, trimmed[n - 1])) {
        return 0;
    }
    return end - letterAt;
}

} // namespace

std::size_t listMarkerLength(std::u16string_view s) {
    std::size_t i = markerEnd(s);
    if (i == 0) {
        return 0;
    }
    const std::size_t spaces = i;
    while (i < s.size() && isHorizontalWhitespace(s[i])) {
        ++i;
    }
    return i > spaces ? i : 0;
}

bool isListMarker(std::u16string_view s) {
    // No marker is longer than "(viii)": longer ranges are not trimmed to find out.
    constexpr std::size_t longest = 6;
    if (s.size() > 64) {
        return false;
    }
    s = trimWhitespace(s);
    return !s.empty() && s.size() <= longest && markerEnd(s) == s.size();
}

bool startsWithLetterMarker(std::u16string_view s) {
    if (listMarkerLength(s) == 0) {
        return false;
    }
    return isAsciiLowercase(s[0]) || (s.size() > 1 && s[0] == u'(' && isAsciiLowercase(s[1]));
}

bool endsWithListNumber(std::u16string_view s) {
    std::size_t start = trailingListNumber(s);
    if (start == std::u16string_view::npos) {
        return false;
    }
    std::u16string_view head = trimSpacesAndTabs(s.substr(0, start));
    return head.empty() || head.back() == u':' || head.back() == u';';
}

std::size_t listMarkerToCarryForward(std::u16string_view text, std::size_t start, std::size_t end,
                                     std::u16string_view next) {
    std::size_t number = numberToCarryForward(text.substr(start, end - start));
    return number > 0 ? number : letterToCarryForward(text, start, end, next);
}

} // namespace lectorbell::detail
