#include "SentenceStops.hpp"

#include "ListMarkers.hpp"
#include "TextClasses.hpp"
#include "TextTrim.hpp"
#include "lectorbell/TextSegmenter.hpp"

#include <algorithm>
#include <array>
#include <string>
#include <unicode/uchar.h>
#include <unicode/utf16.h>

namespace lectorbell::detail {

namespace {

template <std::size_t N>
bool contains(const std::array<std::u16string_view, N>& words, std::u16string_view word) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

// Abbreviations (lower-cased, final period removed) that often end a sentence: company forms,
// "etc.", times of day, countries, name suffixes, degrees.
bool isClosingAbbreviation(std::u16string_view word) {
    static constexpr auto words =
        std::to_array<std::u16string_view>({u"etc", u"co", u"inc", u"ltd", u"corp", u"u.s", u"u.k",
                                            u"a.m", u"p.m", u"jr", u"sr", u"al", u"ph.d"});
    return contains(words, word);
}

// Capitalised words that start sentences far more often than they continue a name or a title.
bool isSentenceStarter(std::u16string_view word) {
    static constexpr auto words = std::to_array<std::u16string_view>(
        {u"I",         u"He",        u"She",       u"It",       u"We",     u"They",    u"You",
         u"My",        u"Your",      u"His",       u"Her",      u"Its",    u"Our",     u"Their",
         u"The",       u"A",         u"An",        u"This",     u"That",   u"These",   u"Those",
         u"There",     u"Here",      u"Some",      u"Many",     u"Most",   u"Both",    u"Each",
         u"Every",     u"All",       u"Such",      u"Another",  u"Other",  u"And",     u"But",
         u"Or",        u"So",        u"Yet",       u"Then",     u"Thus",   u"However", u"Also",
         u"Still",     u"Therefore", u"Meanwhile", u"Later",    u"Now",    u"Today",   u"Instead",
         u"Otherwise", u"Moreover",  u"Finally",   u"Although", u"Though", u"Because", u"Since",
         u"While",     u"When",      u"After",     u"Before",   u"If",     u"As",      u"Once",
         u"Unless",    u"Until",     u"In",        u"On",       u"At",     u"For",     u"With",
         u"From",      u"By",        u"During",    u"What",     u"Who",    u"Why",     u"How",
         u"Where",     u"Which",     u"Do",        u"Does",     u"Did",    u"Is",      u"Are",
         u"Was",       u"Were",      u"Has",       u"Have",     u"Had",    u"Can",     u"Could",
         u"Would",     u"Should",    u"Let",       u"Please",   u"Yes"});
    return contains(words, word);
}

// The part before "n't" of a negated auxiliary that starts a sentence ("Don't", "Isn't").
bool isNegatedAuxiliary(std::u16string_view word) {
    static constexpr auto words =
        std::to_array<std::u16string_view>({u"Don", u"Doesn", u"Didn", u"Isn", u"Aren", u"Wasn",
                                            u"Weren", u"Can", u"Won", u"Couldn", u"Wouldn"});
    return contains(words, word);
}

bool isPersonalTitle(std::u16string_view word) {
    static constexpr auto words =
        std::to_array<std::u16string_view>({u"Mr", u"Mrs", u"Ms", u"Dr", u"Prof"});
    return contains(words, word);
}

// Labels that number what follows them ("Sec. 4", "ext. 4411"), lower-cased; shorter ones are
// covered by numberAfterShortWord.
bool isNumberLabel(std::u16string_view word) {
    static constexpr auto words = std::to_array<std::u16string_view>(
        {u"art", u"chap", u"ext", u"para", u"ref", u"refs", u"sec", u"sect", u"tab", u"tel", u"thm",
         u"nos", u"vols", u"eqs"});
    return contains(words, word);
}

// Prepositions that open a sentence with a short phrase: "At 5 a.m. Mr. Smith left."
bool isOpeningPreposition(std::u16string_view word) {
    static constexpr auto words = std::to_array<std::u16string_view>(
        {u"at", u"by", u"in", u"on", u"after", u"before", u"until", u"from", u"since", u"around",
         u"about", u"near", u"during", u"for", u"with", u"within"});
    return contains(words, word);
}

bool isDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}

bool isClosingQuote(char16_t c) {
    return c == u'"' || c == u'\u201D' || c == u'\u2019' || c == u'\'' || c == u')' || c == u']';
}

bool isWordSeparator(char16_t c) {
    return isWhitespaceOrNewline(c) || c == u'(' || c == u'[' || c == u'"' || c == u'\u201C' ||
           c == u'\u2018';
}

// The word of s that ends at `end`, inner periods included ("U.S" in "the U.S.").
std::u16string_view wordEndingAt(std::u16string_view s, std::size_t end) {
    std::size_t start = end;
    while (start > 0 && !isWordSeparator(s[start - 1])) {
        --start;
    }
    return s.substr(start, end - start);
}

// The word before `word`, which lies in s.
std::u16string_view wordBefore(std::u16string_view s, std::u16string_view word) {
    auto end = static_cast<std::size_t>(word.data() - s.data());
    while (end > 0 && isWordSeparator(s[end - 1])) {
        --end;
    }
    return wordEndingAt(s, end);
}

bool isAsciiUppercase(char16_t c) {
    return c >= u'A' && c <= u'Z';
}

// The leading run of letters and digits of s; ASCII is judged without a Unicode lookup.
std::u16string_view leadingWord(std::u16string_view s) {
    std::size_t i = 0;
    while (i < s.size()) {
        const char32_t c = scalarAt(s, i);
        const bool ascii = c < 0x80;
        if (ascii ? !(isDigit(static_cast<char16_t>(c)) ||
                      isAsciiUppercase(static_cast<char16_t>(c)) || (c >= u'a' && c <= u'z'))
                  : !isLetterOrDigit(c)) {
            break;
        }
        i += U16_LENGTH(c);
    }
    return s.substr(0, i);
}

bool startsSentence(std::u16string_view next) {
    // Every starter and title begins with an ASCII capital.
    if (!isAsciiUppercase(next.front())) {
        return false;
    }
    std::u16string_view word = leadingWord(next);
    if (isPersonalTitle(word)) {
        return true;
    }
    const char16_t follow = word.size() < next.size() ? next[word.size()] : u' ';
    if (follow == u'\'' || follow == u'\u2019') {
        // "It's", "I'm", "Don't".
        return isSentenceStarter(word) || isNegatedAuxiliary(word);
    }
    // "A.I." and "A-list" are names, not the article.
    const bool wordEnds = follow != u'.' && follow != u'-' && follow != u'&' && follow != u'/';
    return wordEnds && isSentenceStarter(word);
}

// "iPhones", "eBay": lower-case first, upper-case inside. Judged scalar by scalar: a letter with a
// combining mark is still a letter of its case.
bool startsWithInnerCapital(std::u16string_view next) {
    if (!u_hasBinaryProperty(static_cast<UChar32>(scalarAt(next, 0)), UCHAR_LOWERCASE)) {
        return false;
    }
    std::u16string_view word = leadingWord(next);
    for (std::size_t i = U16_LENGTH(scalarAt(word, 0)); i < word.size();
         i += U16_LENGTH(scalarAt(word, i))) {
        const char32_t c = scalarAt(word, i);
        if (c < 0x80 ? isAsciiUppercase(static_cast<char16_t>(c))
                     : u_hasBinaryProperty(static_cast<UChar32>(c), UCHAR_UPPERCASE)) {
            return true;
        }
    }
    return false;
}

// Letters only, some lower-case, and no vowel: "Bldg", "Blvd" are short forms, not words, while
// "PDF" is a word of its own.
bool isWithoutVowels(std::u16string_view word) {
    if (std::ranges::none_of(word, [](char16_t c) { return c >= u'a' && c <= u'z'; })) {
        return false;
    }
    for (char16_t c : word) {
        const auto lower = static_cast<char16_t>(c >= u'A' && c <= u'Z' ? c + 32 : c);
        if (lower < u'a' || lower > u'z' ||
            std::u16string_view{u"aeiouy"}.find(lower) != std::u16string_view::npos) {
            return false;
        }
    }
    return true;
}

// `head` ends with the full stop before a number.
bool numberFollowsLabel(std::u16string_view head, std::u16string_view next) {
    std::u16string_view word = wordEndingAt(head, head.size() - 1);
    return numberAfterShortWord(head, next) || endsWithListNumber(head) ||
           isNumberLabel(lowercased(word)) || isWithoutVowels(word);
}

// "At 5 a.m.", "In the U.S.": a preposition and at most three more words.
bool isOpeningPhrase(std::u16string_view head) {
    std::size_t words = 0;
    std::u16string_view first;
    for (std::size_t i = 0; i < head.size() && words <= 4;) {
        while (i < head.size() && isWhitespaceOrNewline(head[i])) {
            ++i;
        }
        const std::size_t start = i;
        while (i < head.size() && !isWhitespaceOrNewline(head[i])) {
            ++i;
        }
        if (i > start) {
            first = words == 0 ? head.substr(start, i - start) : first;
            ++words;
        }
    }
    return words <= 4 && isOpeningPreposition(lowercased(first));
}

// "than I.", "vitamin C.": a lone letter after a lower-case word is no initial of a name.
bool isLetterAfterLowercaseWord(std::u16string_view head, std::u16string_view word) {
    if (word.size() != 1 || !isLetterCharacter(word)) {
        return false;
    }
    std::u16string_view previous = wordBefore(head, word);
    return isLowercaseCharacter(firstCharacter(previous));
}

} // namespace

bool stopEndsSentence(std::u16string_view before, std::u16string_view after) {
    // Most ranges end in a letter or a comma: those are let go before any Unicode lookup.
    const std::size_t last = before.find_last_not_of(u" \t\n\r\"')]\u201D\u2019");
    if (last == std::u16string_view::npos || (before[last] < 0x80 && before[last] != u'.' &&
                                              before[last] != u'!' && before[last] != u'?')) {
        return false;
    }
    const bool spaced = (!before.empty() && isWhitespaceOrNewline(before.back())) ||
                        (!after.empty() && isWhitespaceOrNewline(after.front()));
    std::u16string_view candidate = trimWhitespace(before);
    std::size_t stopEnd = candidate.size();
    while (stopEnd > 0 && isClosingQuote(candidate[stopEnd - 1])) {
        --stopEnd;
    }
    std::size_t nextStart = 0;
    while (nextStart < after.size() && isWhitespaceOrNewline(scalarAt(after, nextStart))) {
        nextStart += U16_LENGTH(scalarAt(after, nextStart));
    }
    std::u16string_view next = after.substr(nextStart);
    if (!spaced || stopEnd == 0 || next.empty()) {
        return false;
    }
    const char16_t stop = candidate[stopEnd - 1];
    std::u16string_view head = candidate.substr(0, stopEnd);
    const bool fullStop = stop == u'.';
    const bool quoted = stopEnd < candidate.size();
    // What starts `after` is looked at first: it is cheap and nearly always settles the matter.
    const bool digit = isDigit(next.front());
    const bool innerCapital = !digit && startsWithInnerCapital(next);
    const bool starter = !digit && !innerCapital && fullStop && !quoted && startsSentence(next);
    if ((stop != u'.' && stop != u'!' && stop != u'?') || !(digit || innerCapital || starter) ||
        endsWithEllipsis(head)) {
        return false;
    }
    // Only the last word decides, and no abbreviation is long: a long range is not scanned again
    // at every stop.
    const auto abbreviation = [&] {
        std::u16string_view tail =
            head.substr(head.size() - std::min<std::size_t>(head.size(), 64));
        return fullStop && !quoted && TextSegmenter::endsWithAbbreviation(tail);
    };
    if (digit) {
        // A closing quote after the stop ends the quotation: no label is quoted.
        return fullStop && (quoted || (!abbreviation() && !numberFollowsLabel(head, next)));
    }
    if (innerCapital) {
        return !abbreviation();
    }
    std::u16string_view word = wordEndingAt(head, head.size() - 1);
    if (isClosingAbbreviation(lowercased(word))) {
        return !isOpeningPhrase(head);
    }
    return isLetterAfterLowercaseWord(head, word);
}

bool endsWithEllipsis(std::u16string_view s) {
    s = trimWhitespace(s);
    if (!s.empty() && s.back() == u'\u2026') {
        return true;
    }
    int dots = 0;
    for (std::size_t i = s.size(); i > 0 && dots < 3; --i) {
        if (s[i - 1] == u'.') {
            ++dots;
        } else if (s[i - 1] != u' ') {
            break;
        }
    }
    return dots == 3;
}

bool numberAfterShortWord(std::u16string_view before, std::u16string_view after) {
    std::u16string_view trimmed = trimWhitespace(before);
    if (trimmed.empty() || trimmed.back() != u'.') {
        return false;
    }
    trimmed.remove_suffix(1);
    std::size_t space = trimmed.find_last_of(u" (");
    std::u16string_view word =
        space == std::u16string_view::npos ? trimmed : trimmed.substr(space + 1);
    // Two letters at most ("p", "pp"), or a sign that is not a letter ("N\u00B0"): "lid. 2." is a
    // sentence end before a list number.
    bool hasSign = false;
    bool hasDigit = false;
    for (char16_t c : word) {
        hasDigit = hasDigit || isDigit(c);
        hasSign = hasSign || (!isDigit(c) && !isLetterOrDigit(c));
    }
    std::u16string_view next = trimWhitespace(after);
    bool shortWord =
        !word.empty() && !hasDigit && (word.size() <= 2 || (hasSign && word.size() <= 3));
    return shortWord && !next.empty() && isDigit(next[0]);
}

} // namespace lectorbell::detail
