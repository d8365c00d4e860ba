#include "DocumentMarkup.hpp"
#include "MarkupSyntax.hpp"
#include "Paragraphs.hpp"
#include "TextClasses.hpp"

#include <unicode/uchar.h>
#include <unicode/utf16.h>

namespace lectorbell::detail {

namespace {

// CommonMark's limits: longer labels and deeper parentheses in a destination are not links.
constexpr std::size_t longestLabel = 999;
constexpr int deepestParentheses = 32;

// Spaces and tabs, then at most one line break and the spaces and tabs after it.
void skipWhitespace(std::u16string_view s, std::size_t& i) {
    while (i < s.size() && isSpaceOrTab(s[i])) {
        ++i;
    }
    if (i < s.size() && isLineBreak(s[i])) {
        i += s[i] == u'\r' && i + 1 < s.size() && s[i + 1] == u'\n' ? 2 : 1;
        while (i < s.size() && isSpaceOrTab(s[i])) {
            ++i;
        }
    }
}

std::size_t afterEscape(std::u16string_view s, std::size_t i) {
    return i + 1 < s.size() ? i + 2 : i + 1;
}

// A destination without angle brackets: no spaces or controls, balanced parentheses. Returns
// where it ends, or no value when its parentheses do not balance.
std::optional<std::size_t> bareDestinationEnd(std::u16string_view s, std::size_t i) {
    int depth = 0;
    while (i < s.size()) {
        char16_t c = s[i];
        if (c == u'\\' && i + 1 < s.size() && isAsciiPunctuation(s[i + 1])) {
            i += 2;
            continue;
        }
        if (c <= u' ' || c == u'\x7F') {
            break;
        }
        if (c == u'(') {
            if (++depth > deepestParentheses) {
                return std::nullopt;
            }
        } else if (c == u')') {
            if (depth == 0) {
                break;
            }
            --depth;
        }
        ++i;
    }
    if (depth != 0) {
        return std::nullopt;
    }
    return i;
}

// A destination in angle brackets on one line; s[i] == '<'.
std::optional<std::size_t> bracketedDestinationEnd(std::u16string_view s, std::size_t i) {
    ++i;
    while (i < s.size() && s[i] != u'>') {
        if (s[i] == u'<' || isLineBreak(s[i])) {
            return std::nullopt;
        }
        i = s[i] == u'\\' ? afterEscape(s, i) : i + 1;
    }
    if (i >= s.size()) {
        return std::nullopt;
    }
    return i + 1;
}

std::optional<std::size_t> destinationEnd(std::u16string_view s, std::size_t i) {
    if (i < s.size() && s[i] == u'<') {
        return bracketedDestinationEnd(s, i);
    }
    return bareDestinationEnd(s, i);
}

// A title in double quotes, single quotes or parentheses starting at s[i]; the offset after it.
std::optional<std::size_t> titleEnd(std::u16string_view s, std::size_t i) {
    const bool parenthesised = s[i] == u'(';
    const char16_t close = parenthesised ? u')' : s[i];
    ++i;
    while (i < s.size() && s[i] != close) {
        if (s[i] == u'\\') {
            i = afterEscape(s, i);
            continue;
        }
        if (parenthesised && s[i] == u'(') {
            return std::nullopt;
        }
        ++i;
    }
    if (i >= s.size()) {
        return std::nullopt;
    }
    return i + 1;
}

bool opensTitle(char16_t c) {
    return c == u'"' || c == u'\'' || c == u'(';
}

} // namespace

Indent indentOf(std::u16string_view line) {
    Indent indent;
    for (; indent.end < line.size() && isSpaceOrTab(line[indent.end]); ++indent.end) {
        indent.columns += line[indent.end] == u'\t' ? 4 - indent.columns % 4 : 1;
    }
    return indent;
}

std::optional<std::u16string> normalizedLabel(std::u16string_view written) {
    if (written.size() > longestLabel) {
        return std::nullopt;
    }
    std::u16string label;
    bool pendingSpace = false;
    for (std::size_t i = 0; i < written.size();) {
        char32_t c = scalarAt(written, i);
        if (c == U'\\' && i + 1 < written.size()) {
            // An escaped character stands for itself, bracket or not.
            if (pendingSpace) {
                label += u' ';
                pendingSpace = false;
            }
            label.append(written.substr(i, 2));
            i += 2;
            continue;
        }
        i += U16_LENGTH(c);
        if (c == U'[' || c == U']') {
            return std::nullopt;
        }
        if (isWhitespaceOrNewline(c)) {
            pendingSpace = !label.empty();
            continue;
        }
        if (pendingSpace) {
            label += u' ';
            pendingSpace = false;
        }
        UChar32 folded = u_foldCase(static_cast<UChar32>(c), U_FOLD_CASE_DEFAULT);
        if (U_IS_BMP(folded)) {
            label += static_cast<char16_t>(folded);
        } else {
            label += static_cast<char16_t>(U16_LEAD(folded));
            label += static_cast<char16_t>(U16_TRAIL(folded));
        }
    }
    if (label.empty()) {
        return std::nullopt;
    }
    return label;
}

std::optional<std::size_t> inlineLinkEnd(std::u16string_view s, std::size_t open) {
    std::size_t i = open + 1;
    skipWhitespace(s, i);
    std::optional<std::size_t> end = destinationEnd(s, i);
    if (!end) {
        return std::nullopt;
    }
    i = *end;
    const std::size_t beforeSpace = i;
    skipWhitespace(s, i);
    if (i > beforeSpace && i < s.size() && opensTitle(s[i])) {
        std::optional<std::size_t> title = titleEnd(s, i);
        if (!title) {
            return std::nullopt;
        }
        i = *title;
        skipWhitespace(s, i);
    }
    if (i < s.size() && s[i] == u')') {
        return i + 1;
    }
    return std::nullopt;
}

std::optional<std::u16string> definitionLabel(std::u16string_view line) {
    const Indent indent = indentOf(line);
    if (indent.columns > 3 || indent.end >= line.size() || line[indent.end] != u'[') {
        return std::nullopt;
    }
    const std::size_t labelStart = indent.end + 1;
    std::size_t i = labelStart;
    while (i < line.size() && line[i] != u']') {
        if (line[i] == u'[') {
            return std::nullopt;
        }
        i = line[i] == u'\\' ? afterEscape(line, i) : i + 1;
    }
    // "[^1]: …" is a footnote, whose text is read.
    if (i + 1 >= line.size() || line[i + 1] != u':' || line[labelStart] == u'^') {
        return std::nullopt;
    }
    std::u16string_view label = line.substr(labelStart, i - labelStart);
    i += 2;
    while (i < line.size() && isSpaceOrTab(line[i])) {
        ++i;
    }
    std::optional<std::size_t> end = i < line.size() ? destinationEnd(line, i) : std::nullopt;
    if (!end || *end == i) {
        return std::nullopt;
    }
    i = *end;
    const std::size_t beforeSpace = i;
    while (i < line.size() && isSpaceOrTab(line[i])) {
        ++i;
    }
    if (i < line.size()) {
        std::optional<std::size_t> title =
            i > beforeSpace && opensTitle(line[i]) ? titleEnd(line, i) : std::nullopt;
        if (!title) {
            return std::nullopt;
        }
        for (i = *title; i < line.size() && isSpaceOrTab(line[i]); ++i) {
        }
        if (i < line.size()) {
            return std::nullopt;
        }
    }
    return normalizedLabel(label);
}

bool LinkLabels::contains(std::u16string_view written) const {
    if (!labels_) {
        labels_.emplace();
        if (text_.find(u"]:") != std::u16string_view::npos) {
            forEachLine(text_, false, [&](std::u16string_view line) {
                if (std::optional<std::u16string> label = definitionLabel(line)) {
                    labels_->insert(std::move(*label));
                }
            });
        }
    }
    if (labels_->empty()) {
        return false;
    }
    std::optional<std::u16string> label = normalizedLabel(written);
    return label && labels_->contains(*label);
}

} // namespace lectorbell::detail
