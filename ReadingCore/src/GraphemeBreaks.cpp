#include "GraphemeBreaks.hpp"

#include "lectorbell/Fatal.hpp"

#include <climits>
#include <memory>
#include <unicode/brkiter.h>
#include <unicode/utext.h>

namespace lectorbell::detail {

namespace {

// Creating a break iterator loads rules; each thread keeps one and points it at new text.
icu::BreakIterator& characterIterator() {
    thread_local std::unique_ptr<icu::BreakIterator> iterator = [] {
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::BreakIterator> it{
            icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status)};
        if (U_FAILURE(status) || !it) {
            fatalError("ICU character break iterator unavailable");
        }
        return it;
    }();
    // The analyzer mistakes the thread_local's one-time initialisation for a use after free.
    return *iterator; // NOLINT(clang-analyzer-cplusplus.NewDelete)
}

// Points the iterator at the text without copying it.
class BoundText {
public:
    explicit BoundText(std::u16string_view s) {
        UErrorCode status = U_ZERO_ERROR;
        utext_openUChars(&text_, s.data(), static_cast<int64_t>(s.size()), &status);
        characterIterator().setText(&text_, status);
        if (U_FAILURE(status)) {
            fatalError("ICU could not bind text to a break iterator");
        }
    }
    ~BoundText() { utext_close(&text_); }
    BoundText(const BoundText&) = delete;
    BoundText& operator=(const BoundText&) = delete;

private:
    UText text_ = UTEXT_INITIALIZER;
};

bool isTrailSurrogate(char16_t c) {
    return c >= 0xDC00 && c <= 0xDFFF;
}
bool isLeadSurrogate(char16_t c) {
    return c >= 0xD800 && c <= 0xDBFF;
}

// ICU's iterators count in 32 bits; past that, keep at least surrogate pairs whole.
bool beyondIcuOffsets(std::u16string_view s) {
    return s.size() > static_cast<std::size_t>(INT32_MAX);
}

bool insideSurrogatePair(std::u16string_view s, std::int64_t i) {
    auto at = static_cast<std::size_t>(i);
    return isTrailSurrogate(s[at]) && isLeadSurrogate(s[at - 1]);
}

} // namespace

std::int64_t graphemeStartAtOrBefore(std::u16string_view s, std::int64_t i) {
    if (beyondIcuOffsets(s)) {
        return insideSurrogatePair(s, i) ? i - 1 : i;
    }
    BoundText bound{s};
    icu::BreakIterator& it = characterIterator();
    auto offset = static_cast<int32_t>(i);
    if (it.isBoundary(offset)) {
        return i;
    }
    // preceding() would first move an offset inside a surrogate pair back to the pair's start;
    // stepping back from the grapheme's end does not.
    it.following(offset);
    return it.previous();
}

std::int64_t graphemeEndAtOrAfter(std::u16string_view s, std::int64_t i) {
    if (beyondIcuOffsets(s)) {
        return insideSurrogatePair(s, i) ? i + 1 : i;
    }
    BoundText bound{s};
    icu::BreakIterator& it = characterIterator();
    auto offset = static_cast<int32_t>(i);
    if (it.isBoundary(offset)) {
        return i;
    }
    return it.following(offset);
}

} // namespace lectorbell::detail
