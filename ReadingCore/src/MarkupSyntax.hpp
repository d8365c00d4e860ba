#pragma once

// The pieces of markdown and HTML syntax that the document reader recognises, each parsed at a
// given offset in one forward scan with no backtracking. Internal to ReadingCore.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace lectorbell::detail {

// The characters a backslash can escape in markdown: all ASCII punctuation.
inline bool isAsciiPunctuation(char16_t c) {
    return (c >= u'!' && c <= u'/') || (c >= u':' && c <= u'@') || (c >= u'[' && c <= u'`') ||
           (c >= u'{' && c <= u'~');
}
inline bool isSpaceOrTab(char16_t c) {
    return c == u' ' || c == u'\t';
}

// Leading spaces and tabs of a line, in columns (a tab reaches the next multiple of four), and
// the offset of the first other character.
struct Indent {
    std::size_t columns = 0;
    std::size_t end = 0;
};
Indent indentOf(std::u16string_view line);

// A link label as CommonMark compares them: case-folded, inner whitespace runs made one space,
// trimmed. No value for a label that cannot name a definition (empty, over 999 units, or with
// an unescaped bracket).
std::optional<std::u16string> normalizedLabel(std::u16string_view written);

// With s[open] == '(' just after a link's closing bracket: the offset after the ")" that ends
// the destination and optional title, or no value when they are not well formed.
std::optional<std::size_t> inlineLinkEnd(std::u16string_view s, std::size_t open);

// What a recognised HTML tag stands for in the text.
enum class TagKind {
    // a, b, span, …: nothing of its own.
    inlineElement,
    // br: a line break.
    lineBreak,
    // p, div, h1, li, summary, …: a paragraph break.
    blockElement,
    // img: its alt text.
    image,
};
struct HtmlTag {
    std::size_t end = 0;
    TagKind kind = TagKind::inlineElement;
    // The raw value of an image's alt attribute; empty when it has none.
    std::u16string_view alt;
};
// With s[at] == '<': an opening or closing tag of a known HTML element, or no value.
std::optional<HtmlTag> htmlTagAt(std::u16string_view s, std::size_t at);

// With s[at] == '<': the offset after the ">" of an autolink ("<https://…>", "<a@b.org>").
std::optional<std::size_t> autolinkEnd(std::u16string_view s, std::size_t at);

// With s[at] == '&': appends the character of a numeric or known named entity and returns the
// offset after its ";", or returns no value and appends nothing.
std::optional<std::size_t> appendEntity(std::u16string_view s, std::size_t at, std::u16string& out);

// Text with its entities replaced by their characters (an attribute value).
std::u16string decodeEntities(std::u16string_view s);

bool equalsIgnoringAsciiCase(std::u16string_view a, std::u16string_view b);

// The shapes of wiki citation and editing marks: "12", "3–5", "1,4", "b", "citation needed",
// "edit", "note 2", "clarification needed".
bool looksLikeCitationMark(std::u16string_view text);

// Whether a paragraph line may run on into the next: not a heading, table row or rule.
bool goesOnIntoNextLine(std::u16string_view line);

} // namespace lectorbell::detail
