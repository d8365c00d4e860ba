#include "lectorbell/AnchorResolver.hpp"

#include "TextTrim.hpp"
#include "lectorbell/Fatal.hpp"
#include "lectorbell/TextSegmenter.hpp"

#include <algorithm>
#include <memory>
#include <unicode/brkiter.h>
#include <unicode/utext.h>

namespace lectorbell::AnchorResolver {

namespace {

icu::BreakIterator* newWordIterator() {
    UErrorCode status = U_ZERO_ERROR;
    icu::BreakIterator* it = icu::BreakIterator::createWordInstance(icu::Locale::getRoot(), status);
    if (U_FAILURE(status) || it == nullptr) {
        fatalError("ICU word break iterator unavailable");
    }
    return it;
}

// ICU's rules are loaded once; each lookup clones the prototype (cheap, and safe from any
// thread), so no iterator state is shared.
std::unique_ptr<icu::BreakIterator> wordIterator() {
    static const std::unique_ptr<icu::BreakIterator> prototype{newWordIterator()};
    return std::unique_ptr<icu::BreakIterator>{prototype->clone()};
}

// Paragraph separators as platform strings see them: LF, CR (CR LF counts once) and U+2029.
bool isParagraphSeparator(char16_t c) {
    return c == u'\n' || c == u'\r' || c == u'\u2029';
}

// The paragraph holding position i, its separator included.
UTF16Range paragraphAround(std::u16string_view text, std::size_t i) {
    std::size_t start = i;
    while (start > 0 && !isParagraphSeparator(text[start - 1])) {
        --start;
    }
    std::size_t end = i;
    while (end < text.size() && !isParagraphSeparator(text[end])) {
        ++end;
    }
    if (end < text.size()) {
        end += (text[end] == u'\r' && end + 1 < text.size() && text[end + 1] == u'\n') ? 2 : 1;
    }
    return {static_cast<std::int64_t>(start), static_cast<std::int64_t>(end - start)};
}

// The paragraph's sentences without the white space that trails each one, so a pointer in the
// spaces after a paragraph's last sentence lies past every sentence (and starts at the next
// paragraph) and one in the gap between two sentences starts the second.
std::vector<UTF16Range> sentencesWithoutTrailingSpace(std::u16string_view paragraph) {
    std::vector<UTF16Range> sentences;
    for (UTF16Range range : TextSegmenter::sentenceRanges(paragraph)) {
        std::optional<UTF16Range> clamped =
            UTF16Text::clamp(range, static_cast<std::int64_t>(paragraph.size()));
        if (!clamped) {
            continue;
        }
        std::u16string_view text = paragraph.substr(static_cast<std::size_t>(clamped->location),
                                                    static_cast<std::size_t>(clamped->length));
        std::u16string_view trimmed = detail::trimWhitespace(text);
        if (trimmed.empty()) {
            continue;
        }
        clamped->length =
            (trimmed.data() - text.data()) + static_cast<std::int64_t>(trimmed.size());
        sentences.push_back(*clamped);
    }
    return sentences;
}

} // namespace

AnchorPrecision atLeast(AnchorPrecision wanted, AnchorPrecision source) {
    return rawValue(wanted) >= rawValue(source) ? wanted : source;
}

std::vector<UTF16Range> wordRanges(std::u16string_view text, UTF16Range within) {
    std::optional<UTF16Range> range =
        UTF16Text::clamp(within, static_cast<std::int64_t>(text.size()));
    if (!range || range->length == 0) {
        return {};
    }
    std::u16string_view part = text.substr(static_cast<std::size_t>(range->location),
                                           static_cast<std::size_t>(range->length));
    std::vector<UTF16Range> words;
    UText utext = UTEXT_INITIALIZER;
    UErrorCode status = U_ZERO_ERROR;
    utext_openUChars(&utext, part.data(), static_cast<int64_t>(part.size()), &status);
    std::unique_ptr<icu::BreakIterator> it = wordIterator();
    it->setText(&utext, status);
    if (U_SUCCESS(status)) {
        int32_t start = it->first();
        for (int32_t end = it->next(); end != icu::BreakIterator::DONE;
             start = end, end = it->next()) {
            if (it->getRuleStatus() != UBRK_WORD_NONE) {
                words.push_back({range->location + start, end - start});
            }
        }
    }
    utext_close(&utext);
    return words;
}

ResolvedAnchor resolve(std::u16string_view text, std::int64_t utf16Offset,
                       AnchorPrecision sourcePrecision) {
    const auto n = static_cast<std::int64_t>(text.size());
    if (n == 0) {
        return {0, sourcePrecision};
    }
    const std::int64_t p = UTF16Text::snapDown(std::clamp<std::int64_t>(utf16Offset, 0, n), text);

    const UTF16Range paragraph =
        paragraphAround(text, static_cast<std::size_t>(std::min(n - 1, p)));
    std::u16string_view paragraphText = text.substr(static_cast<std::size_t>(paragraph.location),
                                                    static_cast<std::size_t>(paragraph.length));
    const std::int64_t r = p - paragraph.location;

    std::vector<UTF16Range> sentences = sentencesWithoutTrailingSpace(paragraphText);
    auto sentence = std::find_if(sentences.begin(), sentences.end(),
                                 [r](const UTF16Range& s) { return s.end() > r; });
    if (sentence == sentences.end()) {
        return {paragraph.end(), atLeast(AnchorPrecision::paragraph, sourcePrecision)};
    }
    const ResolvedAnchor sentenceStart{paragraph.location + sentence->location,
                                       atLeast(AnchorPrecision::sentence, sourcePrecision)};

    std::vector<UTF16Range> words = wordRanges(paragraphText, *sentence);
    if (words.empty()) {
        return sentenceStart;
    }
    const bool pastFirstWordStart = r > words.front().location;
    auto word =
        std::find_if(words.begin(), words.end(), [r](const UTF16Range& w) { return w.end() > r; });
    if (word != words.end()) {
        if (word == words.begin() || !pastFirstWordStart) {
            return sentenceStart;
        }
        return {paragraph.location + word->location,
                atLeast(AnchorPrecision::word, sourcePrecision)};
    }
    if (words.size() == 1 || !pastFirstWordStart) {
        return sentenceStart;
    }
    return {paragraph.location + words.back().location,
            atLeast(AnchorPrecision::word, sourcePrecision)};
}

} // namespace lectorbell::AnchorResolver
