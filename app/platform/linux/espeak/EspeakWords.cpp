#include "platform/linux/espeak/EspeakWords.hpp"

#include <QChar>
#include <QString>
#include <QTextBoundaryFinder>
#include <optional>

namespace lectorbell::platform::espeak {

namespace {

struct CodePoint {
    char32_t value = 0;
    std::int64_t units = 1;
};

// The code point at UTF-16 offset i; an unpaired surrogate counts as one code point, as it does
// once converted to UTF-8 (U+FFFD) for espeak-ng.
CodePoint codePointAt(std::u16string_view text, std::int64_t i) {
    char16_t unit = text[static_cast<std::size_t>(i)];
    if (QChar::isHighSurrogate(unit) && i + 1 < static_cast<std::int64_t>(text.size())) {
        char16_t low = text[static_cast<std::size_t>(i + 1)];
        if (QChar::isLowSurrogate(low)) {
            return {QChar::surrogateToUcs4(unit, low), 2};
        }
    }
    return {unit, 1};
}

// UTF-16 offset of every code point, plus the text's length at the end.
std::vector<std::int64_t> codePointOffsets(std::u16string_view text) {
    std::vector<std::int64_t> offsets;
    offsets.reserve(text.size() + 1);
    auto n = static_cast<std::int64_t>(text.size());
    for (std::int64_t i = 0; i < n; i += codePointAt(text, i).units) {
        offsets.push_back(i);
    }
    offsets.push_back(n);
    return offsets;
}

bool isSpaceAt(std::u16string_view text, std::int64_t i) {
    return QChar::isSpace(codePointAt(text, i).value);
}

bool isPunctAt(std::u16string_view text, std::int64_t i) {
    return QChar::isPunct(codePointAt(text, i).value);
}

// Start of the code point that ends just before offset i.
std::int64_t previousCodePoint(std::u16string_view text, std::int64_t i) {
    if (i >= 2 && QChar::isLowSurrogate(text[static_cast<std::size_t>(i - 1)]) &&
        QChar::isHighSurrogate(text[static_cast<std::size_t>(i - 2)])) {
        return i - 2;
    }
    return i - 1;
}

// The word beginning at or just after `start`, ending before `limit`; none on whitespace.
std::optional<UTF16Range> wordAt(std::u16string_view text, std::int64_t start, std::int64_t limit) {
    auto n = static_cast<std::int64_t>(text.size());
    if (start >= n || isSpaceAt(text, start)) {
        return std::nullopt;
    }
    std::int64_t tokenEnd = start;
    while (tokenEnd < limit && !isSpaceAt(text, tokenEnd)) {
        tokenEnd += codePointAt(text, tokenEnd).units;
    }
    std::int64_t first = start;
    while (first < tokenEnd && isPunctAt(text, first)) {
        first += codePointAt(text, first).units;
    }
    if (first == tokenEnd) {
        // Only punctuation, and still spoken: keep the whole token.
        return UTF16Range{start, tokenEnd - start};
    }
    std::int64_t end = tokenEnd;
    while (end > first && isPunctAt(text, previousCodePoint(text, end))) {
        end = previousCodePoint(text, end);
    }
    return UTF16Range{first, end - first};
}

} // namespace

std::vector<SpokenWord> spokenWords(std::u16string_view text,
                                    const std::vector<EspeakWordEvent>& events) {
    std::vector<std::int64_t> offsets = codePointOffsets(text);
    auto codePoints = static_cast<std::int64_t>(offsets.size()) - 1;
    QString qtext = QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
    QTextBoundaryFinder boundaries{QTextBoundaryFinder::Word, qtext};
    // An event inside a word (espeak-ng speaks "2026" as four events) is not a new word; one
    // after a space, punctuation or at a word boundary (scripts without spaces) is.
    auto beginsWord = [&](std::int64_t start) {
        if (start == 0) {
            return true;
        }
        std::int64_t before = previousCodePoint(text, start);
        if (isSpaceAt(text, before) || isPunctAt(text, before)) {
            return true;
        }
        boundaries.setPosition(static_cast<qsizetype>(start));
        return boundaries.isAtBoundary() &&
               boundaries.boundaryReasons().testFlag(QTextBoundaryFinder::StartOfItem);
    };

    // Starts first, so that each word can end where the next one begins.
    std::vector<std::pair<std::int64_t, std::int64_t>> starts; // (UTF-16 start, frame)
    for (const EspeakWordEvent& event : events) {
        std::int64_t index = event.textPosition - 1;
        if (index < 0 || index >= codePoints) {
            continue;
        }
        std::int64_t start = offsets[static_cast<std::size_t>(index)];
        if ((!starts.empty() && start <= starts.back().first) || !beginsWord(start)) {
            continue;
        }
        starts.emplace_back(start, event.frame);
    }

    std::vector<SpokenWord> words;
    for (std::size_t i = 0; i < starts.size(); ++i) {
        std::int64_t limit =
            i + 1 < starts.size() ? starts[i + 1].first : static_cast<std::int64_t>(text.size());
        std::optional<UTF16Range> range = wordAt(text, starts[i].first, limit);
        if (!range || (!words.empty() && range->location < words.back().range.end())) {
            continue;
        }
        words.push_back({starts[i].second, *range});
    }
    return words;
}

} // namespace lectorbell::platform::espeak
