#include "GraphemeBreaks.hpp"
#include "ListMarkers.hpp"
#include "SentenceStops.hpp"
#include "TextClasses.hpp"
#include "TextTrim.hpp"
#include "lectorbell/Fatal.hpp"
#include "lectorbell/TextSegmenter.hpp"

#include <algorithm>
#include <array>
#include <memory>
#include <unicode/brkiter.h>
#include <unicode/utext.h>

namespace lectorbell::TextSegmenter {

namespace {

using detail::scalarAt;
using detail::scalarBefore;

bool isAbbreviation(std::u16string_view word) {
    static constexpr std::array<std::u16string_view, 53> abbreviations{
        u"mr",  u"mrs",  u"ms",  u"dr",   u"prof", u"sr",  u"jr",  u"st",   u"vs",
        u"etc", u"e.g",  u"i.e", u"u.s",  u"u.k",  u"no",  u"fig", u"figs", u"approx",
        u"inc", u"ltd",  u"co",  u"corp", u"dept", u"est", u"vol", u"pp",   u"ed",
        u"eds", u"al",   u"jan", u"feb",  u"mar",  u"apr", u"jun", u"jul",  u"aug",
        u"sep", u"sept", u"oct", u"nov",  u"dec",  u"mt",  u"ave", u"gen",  u"gov",
        u"sen", u"rep",  u"rev", u"ph.d", u"a.m",  u"p.m", u"cf",  u"viz"};
    return std::find(abbreviations.begin(), abbreviations.end(), word) != abbreviations.end();
}

// ICU's sentence rules with its English abbreviation suppressions; one iterator per thread.
icu::BreakIterator& sentenceIterator() {
    thread_local std::unique_ptr<icu::BreakIterator> iterator = [] {
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::BreakIterator> it{
            icu::BreakIterator::createSentenceInstance(icu::Locale("en@ss=standard"), status)};
        if (U_FAILURE(status) || !it) {
            status = U_ZERO_ERROR;
            it.reset(icu::BreakIterator::createSentenceInstance(icu::Locale::getRoot(), status));
        }
        if (U_FAILURE(status) || !it) {
            fatalError("ICU sentence break iterator unavailable");
        }
        return it;
    }();
    return *iterator;
}

struct Span {
    std::size_t start = 0;
    std::size_t end = 0;
};

std::vector<Span> tokenizerSpans(std::u16string_view text) {
    std::vector<Span> spans;
    UText utext = UTEXT_INITIALIZER;
    UErrorCode status = U_ZERO_ERROR;
    utext_openUChars(&utext, text.data(), static_cast<int64_t>(text.size()), &status);
    icu::BreakIterator& it = sentenceIterator();
    it.setText(&utext, status);
    if (U_SUCCESS(status)) {
        int32_t start = it.first();
        for (int32_t end = it.next(); end != icu::BreakIterator::DONE;
             start = end, end = it.next()) {
            spans.push_back({static_cast<std::size_t>(start), static_cast<std::size_t>(end)});
        }
    }
    utext_close(&utext);
    return spans;
}

bool isClosingQuote(char32_t c) {
    return c == u'"' || c == u'\u201D' || c == u'\u2019' || c == u'\'' || c == u')' || c == u']';
}

bool isOpeningPunctuation(char32_t c) {
    return c == u'"' || c == u'\u201C' || c == u'\u2018' || c == u'\'' || c == u'(' || c == u'[' ||
           c == u'\u00AB';
}

std::size_t skipHorizontal(std::u16string_view text, std::size_t i, std::size_t end) {
    while (i < end && detail::isHorizontalWhitespace(scalarAt(text, i))) {
        i += U16_LENGTH(scalarAt(text, i));
    }
    return i;
}

// A citation mark such as "[12]", "[3–5]", "[b]" or "[citation needed]" at the start of s.
std::size_t citationMarkLength(std::u16string_view s) {
    if (s.empty() || s[0] != u'[') {
        return 0;
    }
    // npos when missing or past the limit; only the limit is searched.
    std::size_t close = s.substr(0, 25).find(u']');
    if (close == std::u16string_view::npos) {
        return 0;
    }
    std::u16string inside = detail::lowercased(s.substr(1, close - 1));
    if (inside == u"citation needed" || inside == u"edit" || inside == u"clarification needed") {
        return close + 1;
    }
    std::u16string_view body = inside;
    if (body.size() == 1 && body[0] >= u'a' && body[0] <= u'z') {
        return close + 1;
    }
    if (body.starts_with(u"note ")) {
        body.remove_prefix(5);
    }
    bool digits = !body.empty();
    for (char16_t c : body) {
        digits = digits && ((c >= u'0' && c <= u'9') || c == u',' || c == u'-' || c == u'\u2013');
    }
    return digits && body.front() >= u'0' && body.front() <= u'9' ? close + 1 : 0;
}

// The citation marks that follow one another at the start of s ("[1][2]", "[3] [4]").
std::size_t citationRunLength(std::u16string_view s) {
    std::size_t end = 0;
    for (std::size_t at = 0, mark = citationMarkLength(s); mark > 0;
         mark = citationMarkLength(s.substr(at))) {
        end = at + mark;
        at = skipHorizontal(s, end, s.size());
    }
    return end;
}

bool isStop(char16_t c) {
    return c == u'.' || c == u'!' || c == u'?';
}

// Where a sentence ends at a mark the tokenizer does not treat as an end: "…" (U+2026), or
// citation marks after a full stop ("cited.[citation needed] Then", "cited. [1] [2] Then").
// Returns the length of that ending at i, or 0.
std::size_t hiddenEndingAt(std::u16string_view text, std::size_t i, std::size_t end) {
    if (text[i] == u'\u2026') {
        return 1;
    }
    if (text[i] != u'[') {
        return 0;
    }
    std::size_t stop = i;
    while (stop > 0 && detail::isHorizontalWhitespace(text[stop - 1])) {
        --stop;
    }
    return stop > 0 && isStop(text[stop - 1]) ? citationRunLength(text.substr(i, end - i)) : 0;
}

// Where the next sentence starts when the text from span.start to p ends one although the
// tokenizer went on: after a hidden ending before a capitalised word (not the pronoun "I"), or
// after a stop that ends a sentence before a digit or a word such as "iPhones".
bool startsMissedSentence(std::u16string_view text, Span span, std::size_t p, bool hidden) {
    if (!hidden) {
        return detail::stopEndsSentence(text.substr(span.start, p - span.start),
                                        text.substr(p, span.end - p));
    }
    std::u16string_view next = detail::firstCharacter(text.substr(p, span.end - p));
    bool pronounI =
        next == u"I" && (p + 1 >= span.end || !detail::isLetterOrDigit(scalarAt(text, p + 1)));
    return detail::isUppercaseCharacter(next) && !pronounI;
}

// Adds the breaks the tokenizer misses.
std::vector<Span> splitAtMissedEnds(std::u16string_view text, const std::vector<Span>& spans) {
    std::vector<Span> result;
    for (Span span : spans) {
        for (std::size_t i = span.start; i < span.end; ++i) {
            std::size_t ending = hiddenEndingAt(text, i, span.end);
            if (ending == 0 && !isStop(text[i])) {
                continue;
            }
            std::size_t p = i + (ending > 0 ? ending : 1);
            while (p < span.end && isClosingQuote(text[p])) {
                ++p;
            }
            std::size_t spaceStart = p;
            while (p < span.end && detail::isWhitespaceOrNewline(scalarAt(text, p))) {
                ++p;
            }
            if (p == spaceStart || p >= span.end) {
                continue;
            }
            if (startsMissedSentence(text, span, p, ending > 0)) {
                result.push_back({span.start, p});
                span.start = p;
                i = p - 1;
            }
        }
        result.push_back(span);
    }
    return result;
}

// How much of `next` is a run of citation marks cut from the end of `previous`.
std::size_t citationCarryOver(std::u16string_view text, Span previous, Span next) {
    // "true.[" | "1][2] Next": the first mark was cut in two.
    std::u16string_view before = text.substr(previous.start, previous.end - previous.start);
    std::size_t open = before.rfind(u'[');
    if (open != std::u16string_view::npos && before.size() - open <= 24 &&
        before.find(u']', open) == std::u16string_view::npos) {
        std::size_t markStart = previous.start + open;
        std::size_t end =
            markStart + citationRunLength(text.substr(markStart, next.end - markStart));
        if (end > next.start) {
            return skipHorizontal(text, end, next.end) - next.start;
        }
    }
    // "true. " | "[12] Next": the marks start the next range.
    std::size_t start = skipHorizontal(text, next.start, next.end);
    std::size_t length = citationRunLength(text.substr(start, next.end - start));
    if (length > 0 && !before.empty()) {
        return skipHorizontal(text, start + length, next.end) - next.start;
    }
    return 0;
}

bool startsWithPronounI(std::u16string_view s) {
    s = detail::trimWhitespace(s);
    return s.starts_with(u"I") && (s.size() == 1 || !detail::isLetterOrDigit(scalarAt(s, 1)));
}

// "(Smith 55)." after a quotation: a reference that ends the sentence before it.
bool isParentheticalReference(std::u16string_view s) {
    s = detail::trimWhitespace(s);
    if (s.size() < 3 || s.front() != u'(' || s.size() > 48) {
        return false;
    }
    std::size_t close = s.find(u')');
    if (close == std::u16string_view::npos || s.find(u'(', 1) != std::u16string_view::npos) {
        return false;
    }
    std::u16string_view rest = s.substr(close + 1);
    return rest.empty() || rest == u"." || rest == u"!" || rest == u"?";
}

bool startsLowercase(std::u16string_view s) {
    std::size_t i = 0;
    while (i < s.size() && (detail::isWhitespaceOrNewline(scalarAt(s, i)) ||
                            isOpeningPunctuation(scalarAt(s, i)))) {
        i += U16_LENGTH(scalarAt(s, i));
    }
    return i < s.size() && detail::isLowercaseCharacter(detail::firstCharacter(s.substr(i)));
}

bool hasLetterOrDigit(std::u16string_view s) {
    for (std::size_t i = 0; i < s.size(); i += U16_LENGTH(scalarAt(s, i))) {
        if (detail::isLetterOrDigit(scalarAt(s, i))) {
            return true;
        }
    }
    return false;
}

// Breaks the tokenizer makes that are not sentence ends, judged by the text alone.
bool joinsPrevious(std::u16string_view before, std::u16string_view after) {
    if (endsWithAbbreviation(before) || detail::endsWithListNumber(before) ||
        detail::isListMarker(before) || detail::numberAfterShortWord(before, after) ||
        isParentheticalReference(after) ||
        (detail::endsWithEllipsis(before) && startsWithPronounI(after))) {
        return true;
    }
    // Inside a URL or address ("search?q=1"): no space on either side of the break.
    char32_t last = scalarBefore(before, before.size());
    if ((last == u'?' || last == u'!' || last == u'.') &&
        !detail::isWhitespaceOrNewline(scalarAt(after, 0))) {
        return true;
    }
    return startsLowercase(after) || !hasLetterOrDigit(after);
}

// A list item at the start of a line ("1. Buy milk", "a. first item", "• eggs"), or a lettered
// item carried over from the previous range ("b. The second item").
bool startsListItem(std::u16string_view text, Span next) {
    std::size_t start = skipHorizontal(text, next.start, next.end);
    std::u16string_view item = text.substr(start, next.end - start);
    std::size_t marker = detail::listMarkerLength(item);
    if (marker == 0) {
        return false;
    }
    std::size_t lineStart = next.start;
    while (lineStart > 0 && detail::isHorizontalWhitespace(text[lineStart - 1])) {
        --lineStart;
    }
    if (lineStart == 0 || detail::isNewline(text[lineStart - 1])) {
        return true;
    }
    return detail::startsWithLetterMarker(item) &&
           detail::isUppercaseCharacter(detail::firstCharacter(item.substr(marker)));
}

bool belongsToPrevious(std::u16string_view text, Span previous, Span next) {
    if (startsListItem(text, next)) {
        return false;
    }
    std::u16string_view before = text.substr(previous.start, previous.end - previous.start);
    std::u16string_view after = text.substr(next.start, next.end - next.start);
    return joinsPrevious(before, after) && !detail::stopEndsSentence(before, after);
}

} // namespace

bool endsWithAbbreviation(std::u16string_view s) {
    s = detail::trimWhitespace(s);
    if (s.empty() || s.back() != u'.') {
        return false;
    }
    s.remove_suffix(1);
    std::u16string_view lastWord;
    std::size_t start = 0;
    for (std::size_t i = 0; i <= s.size(); ++i) {
        bool separator =
            i == s.size() || s[i] == u' ' || s[i] == u'(' || s[i] == u'"' || s[i] == u'\u201C';
        if (separator) {
            if (i > start) {
                lastWord = s.substr(start, i - start);
            }
            start = i + 1;
        }
    }
    if (lastWord.empty()) {
        return false;
    }
    std::u16string word = detail::lowercased(lastWord);
    if (isAbbreviation(word)) {
        return true;
    }
    std::erase(word, u'.');
    return !word.empty() && detail::firstCharacter(word).size() == word.size() &&
           detail::isLetterCharacter(word);
}

std::vector<UTF16Range> sentenceRanges(std::u16string_view text) {
    if (text.empty()) {
        return {};
    }
    std::vector<Span> spans = splitAtMissedEnds(text, tokenizerSpans(text));
    if (spans.empty()) {
        spans.push_back({0, text.size()});
    }
    std::vector<Span> kept;
    for (Span span : spans) {
        if (!kept.empty()) {
            Span& previous = kept.back();
            std::size_t carried = citationCarryOver(text, previous, span);
            previous.end += carried;
            span.start += carried;
            if (span.start >= span.end) {
                continue;
            }
            std::size_t marker = detail::listMarkerToCarryForward(
                text, previous.start, previous.end, text.substr(span.start, span.end - span.start));
            previous.end -= marker;
            span.start -= marker;
            if (belongsToPrevious(text, previous, span)) {
                previous.end = span.end;
                continue;
            }
        }
        kept.push_back(span);
    }
    std::vector<UTF16Range> ranges;
    ranges.reserve(kept.size());
    for (Span span : kept) {
        ranges.push_back({static_cast<std::int64_t>(span.start),
                          static_cast<std::int64_t>(span.end - span.start)});
    }
    return ranges;
}

std::vector<Sentence> sentencesWithRanges(std::u16string_view text) {
    std::vector<Sentence> result;
    const auto length = static_cast<std::int64_t>(text.size());
    for (UTF16Range range : sentenceRanges(text)) {
        if (range.location < 0 || range.location == UTF16Range::notFound || range.length < 0) {
            continue;
        }
        std::int64_t start = UTF16Text::snapDown(std::min(range.location, length), text);
        std::int64_t end = UTF16Text::snapUp(std::min(range.end(), length), text);
        if (end < start) {
            continue;
        }
        std::u16string_view sentence = detail::trimWhitespace(
            text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start)));
        if (!sentence.empty()) {
            result.push_back({range, std::u16string{sentence}});
        }
    }
    return result;
}

std::vector<std::u16string> sentences(std::u16string_view text) {
    std::vector<std::u16string> result;
    for (Sentence& sentence : sentencesWithRanges(text)) {
        result.push_back(std::move(sentence.text));
    }
    return result;
}

} // namespace lectorbell::TextSegmenter
