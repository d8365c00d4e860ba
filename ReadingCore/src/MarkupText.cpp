#include "DocumentMarkup.hpp"
#include "MarkupSyntax.hpp"
#include "TextClasses.hpp"
#include "TextTrim.hpp"

#include <algorithm>
#include <array>
#include <unicode/utf16.h>

namespace lectorbell::detail {

namespace {

bool isImageFileName(std::u16string_view text) {
    static constexpr std::array<std::u16string_view, 14> extensions{
        u"apng", u"avif", u"bmp", u"gif", u"ico",  u"jpeg", u"jpg",
        u"mp4",  u"png",  u"svg", u"tif", u"tiff", u"webm", u"webp"};
    const std::size_t dot = text.rfind(u'.');
    if (dot == std::u16string_view::npos || dot == 0 ||
        std::any_of(text.begin(), text.end(),
                    [](char16_t c) { return isWhitespaceOrNewline(c); })) {
        return false;
    }
    std::u16string_view extension = text.substr(dot + 1);
    return std::any_of(extensions.begin(), extensions.end(), [&](std::u16string_view e) {
        return equalsIgnoringAsciiCase(extension, e);
    });
}

bool namesOnlyThePicture(std::u16string_view text) {
    static constexpr std::array<std::u16string_view, 19> words{
        u"alt",     u"badge", u"badges",     u"banner", u"gif",  u"icon",  u"image",
        u"images",  u"img",   u"jpeg",       u"jpg",    u"logo", u"photo", u"pic",
        u"picture", u"png",   u"screenshot", u"shield", u"svg"};
    for (std::size_t i = 0; i < text.size();) {
        if (!isLetterOrDigit(scalarAt(text, i))) {
            i += U16_LENGTH(scalarAt(text, i));
            continue;
        }
        std::size_t end = i;
        while (end < text.size() && isLetterOrDigit(scalarAt(text, end))) {
            end += U16_LENGTH(scalarAt(text, end));
        }
        std::u16string_view word = text.substr(i, end - i);
        if (std::none_of(words.begin(), words.end(),
                         [&](std::u16string_view w) { return equalsIgnoringAsciiCase(word, w); })) {
            return false;
        }
        i = end;
    }
    return true;
}

} // namespace

bool equalsIgnoringAsciiCase(std::u16string_view a, std::u16string_view b) {
    auto lower = [](char16_t c) { return c >= u'A' && c <= u'Z' ? c - u'A' + u'a' : c; };
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(),
                      [&](char16_t x, char16_t y) { return lower(x) == lower(y); });
}

bool looksLikeCitationMark(std::u16string_view text) {
    constexpr std::array<std::u16string_view, 3> phrases{u"citation needed", u"edit",
                                                         u"clarification needed"};
    auto isDigit = [](char16_t c) { return c >= u'0' && c <= u'9'; };
    if (text.size() == 1 && isLetterOrDigit(text[0])) {
        return true;
    }
    if (!text.empty() && isDigit(text[0]) && std::all_of(text.begin(), text.end(), [&](char16_t c) {
            return isDigit(c) || c == u',' || c == u'-' || c == u'\u2013';
        })) {
        return true;
    }
    if (text.size() > 5 && equalsIgnoringAsciiCase(text.substr(0, 5), u"note ") &&
        std::all_of(text.begin() + 5, text.end(), isDigit)) {
        return true;
    }
    return std::any_of(phrases.begin(), phrases.end(), [&](std::u16string_view phrase) {
        return equalsIgnoringAsciiCase(text, phrase);
    });
}

bool goesOnIntoNextLine(std::u16string_view line) {
    std::u16string_view text = trimWhitespace(line);
    if (text.empty() || text.front() == u'#' || text.front() == u'|' || text.back() == u'|') {
        return false;
    }
    return !std::all_of(text.begin(), text.end(), [](char16_t c) {
        return c == u'=' || c == u'-' || c == u'*' || c == u'_' || isSpaceOrTab(c);
    });
}

bool isSilentImageText(std::u16string_view description) {
    // Longer than any caption made only of such words: checking it would only cost time.
    constexpr std::size_t longestSilent = 200;
    std::u16string_view text = trimWhitespace(description);
    if (text.size() > longestSilent) {
        return false;
    }
    return isImageFileName(text) || namesOnlyThePicture(text);
}

} // namespace lectorbell::detail
