#include "lectorbell/TextAlignment.hpp"

#include "lectorbell/Fatal.hpp"

#include <algorithm>
#include <climits>
#include <memory>
#include <unicode/brkiter.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utext.h>

namespace lectorbell::TextAlignment {

namespace {

// Creating a break iterator loads rules; each thread keeps one and points it at new text.
icu::BreakIterator& wordIterator() {
    thread_local std::unique_ptr<icu::BreakIterator> iterator = [] {
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::BreakIterator> it{
            icu::BreakIterator::createWordInstance(icu::Locale::getRoot(), status)};
        if (U_FAILURE(status) || !it) {
            fatalError("ICU word break iterator unavailable");
        }
        return it;
    }();
    // The analyzer mistakes the thread_local's one-time initialisation for a use after free.
    return *iterator; // NOLINT(clang-analyzer-cplusplus.NewDelete)
}

bool isLetterMarkOrDigit(UChar32 c) {
    return (U_GET_GC_MASK(c) & (U_GC_L_MASK | U_GC_M_MASK | U_GC_N_MASK)) != 0;
}

// Punctuation, spaces and symbols between words carry the "none" status.
bool isWordSegment(int32_t status) {
    return status < UBRK_WORD_NONE || status >= UBRK_WORD_NONE_LIMIT;
}

} // namespace

std::u16string normalize(std::u16string_view word) {
    if (word.size() > static_cast<std::size_t>(INT32_MAX)) {
        return {};
    }
    icu::UnicodeString lowered{word.data(), static_cast<int32_t>(word.size())};
    lowered.toLower(icu::Locale::getRoot());
    std::u16string out;
    out.reserve(static_cast<std::size_t>(lowered.length()));
    for (int32_t i = 0; i < lowered.length();) {
        UChar32 c = lowered.char32At(i);
        int32_t next = lowered.moveIndex32(i, 1);
        if (isLetterMarkOrDigit(c)) {
            out.append(lowered.getBuffer() + i, lowered.getBuffer() + next);
        }
        i = next;
    }
    return out;
}

std::vector<Token> tokenize(std::u16string_view text) {
    std::vector<Token> tokens;
    if (text.empty() || text.size() > static_cast<std::size_t>(INT32_MAX)) {
        return tokens;
    }
    UErrorCode status = U_ZERO_ERROR;
    UText bound = UTEXT_INITIALIZER;
    utext_openUChars(&bound, text.data(), static_cast<int64_t>(text.size()), &status);
    icu::BreakIterator& it = wordIterator();
    it.setText(&bound, status);
    if (U_FAILURE(status)) {
        utext_close(&bound);
        return tokens;
    }
    int32_t start = it.first();
    for (int32_t end = it.next(); end != icu::BreakIterator::DONE; start = end, end = it.next()) {
        if (!isWordSegment(it.getRuleStatus())) {
            continue;
        }
        auto from = static_cast<std::size_t>(start);
        std::u16string word = normalize(text.substr(from, static_cast<std::size_t>(end) - from));
        if (!word.empty()) {
            tokens.push_back(Token{std::move(word), start});
        }
    }
    utext_close(&bound);
    return tokens;
}

std::optional<std::int64_t> offset(const std::vector<std::u16string>& words,
                                   std::u16string_view text, int minimumWords) {
    std::vector<std::u16string> run;
    for (const std::u16string& word : words) {
        if (std::u16string normal = normalize(word); !normal.empty()) {
            run.push_back(std::move(normal));
        }
    }
    if (run.empty()) {
        return std::nullopt;
    }
    std::vector<Token> tokens = tokenize(text);
    std::size_t required =
        minimumWords < 1 ? 1 : std::min(static_cast<std::size_t>(minimumWords), run.size());

    std::optional<std::int64_t> match;
    std::size_t matches = 0;
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        std::size_t compared = std::min(run.size(), tokens.size() - i);
        if (compared < required) {
            break;
        }
        bool equal =
            std::equal(run.begin(), run.begin() + static_cast<std::ptrdiff_t>(compared),
                       tokens.begin() + static_cast<std::ptrdiff_t>(i),
                       [](const std::u16string& w, const Token& t) { return w == t.word; });
        if (equal) {
            match = tokens[i].offset;
            ++matches;
        }
    }
    return matches == 1 ? match : std::nullopt;
}

} // namespace lectorbell::TextAlignment
