#include "GuardedRegex.hpp"
#include "LayoutGeometry.hpp"
#include "TextClasses.hpp"
#include "lectorbell/ReadingOrderEngine.hpp"
#include "lectorbell/TextSegmenter.hpp"

#include <unicode/uchar.h>

namespace lectorbell::ReadingOrderEngine {

namespace {

constexpr const char* owner = "ReadingCore/ReadingOrderEngine";

const icu::RegexPattern& listItemPattern() {
    static const auto pattern = detail::compileConstantPattern(
        u"^\\s*([\u2022\u25AA\u25E6\u25CF\u2023\u2219\\-\u2013*]|\\d{1,3}[.)]|[a-zA-Z][.)])\\s+", 0,
        owner);
    return *pattern;
}

bool isBullet(char16_t c) {
    return std::u16string_view{u"\u2022\u25AA\u25E6\u25CF\u2023\u2219-\u2013*"}.find(c) !=
           std::u16string_view::npos;
}

// Most lines start with a letter that is not followed by "." or ")": those cannot match, and
// skipping them keeps the regular expression off nearly every line of a page.
bool mayStartWithMarker(std::u16string_view text) {
    std::size_t i = 0;
    while (i < text.size() && u_isUWhiteSpace(text[i])) {
        ++i;
    }
    if (i == text.size()) {
        return false;
    }
    const char16_t c = text[i];
    if (isBullet(c) || u_isdigit(c)) {
        return true;
    }
    const bool asciiLetter = (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
    return asciiLetter && i + 1 < text.size() && (text[i + 1] == u'.' || text[i + 1] == u')');
}

bool endsWithTerminalPunctuation(std::u16string_view text) {
    return TextSegmenter::isTerminalPunctuation(detail::lastCharacter(text));
}

BlockRole roleOf(const Paragraph& paragraph, bool startsWithMarker) {
    if (startsWithMarker) {
        return BlockRole::listItem;
    }
    if (paragraph.lines.size() >= 3) {
        return BlockRole::body;
    }
    if (endsWithTerminalPunctuation(paragraph.lines.back().text)) {
        return BlockRole::body;
    }
    return paragraph.lines.front().text.size() < 80 ? BlockRole::heading : BlockRole::body;
}

// Appends a wrapped line. Only the previous line takes part in joining (a hyphen at its end),
// so only it is rebuilt: the paragraph grows in time linear in its length.
void appendLine(Paragraph& paragraph, const Line& line) {
    if (paragraph.lines.empty()) {
        paragraph.text = line.text;
        paragraph.lineOffsets.push_back(0);
        paragraph.rect = line.rect;
    } else {
        const auto previousStart = static_cast<std::size_t>(paragraph.lineOffsets.back());
        std::u16string joined = TextSegmenter::joinWrappedLines(
            std::u16string_view{paragraph.text}.substr(previousStart), line.text);
        paragraph.text.resize(previousStart);
        paragraph.text += joined;
        // Joining keeps the new line whole at the end; should it ever not, the line starts
        // where the previous one did rather than before it.
        const std::size_t end = paragraph.text.size();
        const std::size_t start =
            end >= previousStart + line.text.size() ? end - line.text.size() : previousStart;
        paragraph.lineOffsets.push_back(static_cast<std::int64_t>(start));
        paragraph.rect = paragraph.rect.united(line.rect);
    }
    paragraph.lines.push_back(line);
}

} // namespace

std::optional<std::u16string> listMarker(std::u16string_view text) {
    if (!mayStartWithMarker(text)) {
        return std::nullopt;
    }
    // A marker sits within the first few characters; the rest of a long line is never needed.
    std::u16string_view head = text.substr(0, 32);
    icu::UnicodeString input{detail::readOnlyAlias(head)};
    detail::GuardedMatcher matcher{listItemPattern(), input};
    if (matcher.failed()) {
        return std::nullopt;
    }
    UBool found = matcher.matcher().lookingAt(matcher.status());
    if (!found || U_FAILURE(matcher.status())) {
        return std::nullopt;
    }
    icu::UnicodeString marker = matcher.matcher().group(1, matcher.status());
    if (U_FAILURE(matcher.status())) {
        return std::nullopt;
    }
    return detail::toU16(marker);
}

std::vector<Paragraph> paragraphs(const Block& block) {
    std::vector<Paragraph> result;
    const double h = block.lineHeight();
    std::vector<bool> marked;
    const Line* previous = nullptr;
    for (const Line& line : block.lines) {
        const bool hasMarker = listMarker(line.text).has_value();
        bool startsNew = previous == nullptr || hasMarker;
        if (!startsNew) {
            const bool gap = line.rect.minY() - previous->rect.maxY() > 0.6 * h;
            const bool indented = line.rect.minX() > previous->rect.minX() + h;
            const bool shortLast = previous->rect.width() < 0.7 * block.rect.width();
            startsNew =
                gap || (endsWithTerminalPunctuation(previous->text) && (indented || shortLast));
        }
        if (startsNew) {
            result.emplace_back();
            marked.push_back(hasMarker);
        }
        appendLine(result.back(), line);
        previous = &line;
    }
    for (std::size_t i = 0; i < result.size(); ++i) {
        result[i].role = roleOf(result[i], marked[i]);
    }
    return result;
}

} // namespace lectorbell::ReadingOrderEngine
