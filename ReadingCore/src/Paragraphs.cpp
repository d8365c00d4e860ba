#include "Paragraphs.hpp"

#include "Characters.hpp"
#include "ListMarkers.hpp"
#include "TextClasses.hpp"
#include "TextTrim.hpp"
#include "lectorbell/TextSegmenter.hpp"

namespace lectorbell {

namespace detail {

namespace {

// "…x-" where x is a letter: a hyphen that may have been added by wrapping.
bool endsWithHyphenAfterLetter(std::u16string_view s) {
    if (s.empty() || s.back() != u'-') {
        return false;
    }
    return isLetterCharacter(lastCharacter(s.substr(0, s.size() - 1)));
}

} // namespace

void ParagraphBuilder::addLine(std::u16string_view rawLine, std::vector<std::u16string>& out) {
    std::u16string_view line = trimSpacesAndTabs(rawLine);
    if (line.empty()) {
        flush(out);
        return;
    }
    if (!hasCurrent_) {
        current_.assign(line);
        hasCurrent_ = true;
        return;
    }
    // A wrapped hyphen before a lower-case start joins even after terminal punctuation tests;
    // otherwise terminal punctuation or a start that is not lower-case ends the paragraph. A list
    // item ("a. first item") is never a wrapped line, whatever its case.
    bool startsLower = isLowercaseCharacter(firstCharacter(line)) && listMarkerLength(line) == 0;
    bool hyphenJoin = startsLower && endsWithHyphenAfterLetter(current_);
    if (!hyphenJoin &&
        (TextSegmenter::isTerminalPunctuation(lastCharacter(current_)) || !startsLower)) {
        flush(out);
        current_.assign(line);
        hasCurrent_ = true;
    } else {
        current_ = TextSegmenter::joinWrappedLines(current_, line);
    }
}

void ParagraphBuilder::finish(std::vector<std::u16string>& out) {
    flush(out);
}

bool ParagraphBuilder::takeOpen(std::u16string& paragraph) {
    if (!hasCurrent_) {
        return false;
    }
    paragraph = std::move(current_);
    current_.clear();
    hasCurrent_ = false;
    return true;
}

void ParagraphBuilder::flush(std::vector<std::u16string>& out) {
    if (hasCurrent_) {
        out.push_back(std::move(current_));
        current_.clear();
        hasCurrent_ = false;
    }
}

} // namespace detail

namespace TextSegmenter {

namespace {

// Words after which a line-end hyphen is a real hyphen, kept when lines are joined.
bool isCompoundPrefix(std::u16string_view word) {
    static constexpr std::u16string_view prefixes[] = {
        u"self",   u"well",  u"non",  u"co",   u"anti", u"pre",   u"post", u"multi", u"ex",
        u"long",   u"high",  u"low",  u"full", u"half", u"cross", u"open", u"short", u"one",
        u"two",    u"three", u"four", u"five", u"real", u"state", u"end",  u"user",  u"first",
        u"second", u"third", u"all",  u"semi", u"sub",  u"inter", u"over"};
    for (std::u16string_view prefix : prefixes) {
        if (prefix == word) {
            return true;
        }
    }
    return false;
}

// The last run of letters in s, lower-cased.
std::u16string lastWord(std::u16string_view s) {
    std::size_t wordStart = 0;
    std::size_t wordEnd = 0;
    std::size_t runStart = 0;
    bool inRun = false;
    detail::forEachCharacter(s, [&](std::u16string_view character, std::size_t start) {
        std::size_t end = start + character.size();
        if (detail::isLetterCharacter(character)) {
            if (!inRun) {
                runStart = start;
                inRun = true;
            }
            wordStart = runStart;
            wordEnd = end;
        } else {
            inRun = false;
        }
        return true;
    });
    return detail::lowercased(s.substr(wordStart, wordEnd - wordStart));
}

} // namespace

bool isTerminalPunctuation(std::u16string_view character) {
    return character.size() == 1 &&
           terminalPunctuation.find(character[0]) != std::u16string_view::npos;
}

std::u16string joinWrappedLines(std::u16string_view a, std::u16string_view b) {
    if (detail::endsWithHyphenAfterLetter(a) &&
        detail::isLowercaseCharacter(detail::firstCharacter(b))) {
        std::u16string_view withoutHyphen = a.substr(0, a.size() - 1);
        std::u16string joined{isCompoundPrefix(lastWord(withoutHyphen)) ? a : withoutHyphen};
        joined += b;
        return joined;
    }
    std::u16string joined{a};
    joined += u' ';
    joined += b;
    return joined;
}

std::vector<std::u16string> paragraphs(std::u16string_view text) {
    std::vector<std::u16string> result;
    detail::ParagraphBuilder builder;
    detail::forEachLine(text, false,
                        [&](std::u16string_view line) { builder.addLine(line, result); });
    builder.finish(result);
    return result;
}

} // namespace TextSegmenter

} // namespace lectorbell
