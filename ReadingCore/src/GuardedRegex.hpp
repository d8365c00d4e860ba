#pragma once

// The one way the reading core runs ICU regular expressions. Patterns are compiled once per
// process and shared read-only; every call gets its own RegexMatcher with a wall-clock limit.
// A limit that fires, or a backtrack stack that overflows, skips that one rule for that one
// text (the text is kept as it was before the rule) and logs one metadata line: hostile text
// is still spoken, never stalled. Internal to ReadingCore.

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unicode/regex.h>
#include <unicode/unistr.h>

namespace lectorbell::detail {

// Longest that one rule may work on one text. Far above what real text needs (a chunk takes
// microseconds, a megabyte a few milliseconds per rule), so only hostile input ever meets it.
inline constexpr std::chrono::milliseconds regexTimeLimit{100};

// Shares the text's storage, which must outlive the alias.
inline icu::UnicodeString readOnlyAlias(std::u16string_view text) {
    return icu::UnicodeString(false, text.data(), static_cast<int32_t>(text.size()));
}
inline icu::UnicodeString copyOf(std::u16string_view text) {
    return icu::UnicodeString(text.data(), static_cast<int32_t>(text.size()));
}
inline std::u16string_view viewOf(const icu::UnicodeString& text) {
    return {text.getBuffer(), static_cast<std::size_t>(text.length())};
}
inline std::u16string toU16(const icu::UnicodeString& text) {
    return std::u16string{viewOf(text)};
}
// ICU strings count in 32 bits; longer texts are passed over by the regular expressions.
inline bool fitsIcu(std::u16string_view text) {
    return text.size() <= static_cast<std::size_t>(INT32_MAX);
}

// A pattern written into the program. Failing to compile one is a programming fault: the
// process stops with a report naming `owner` (such as "ReadingCore/SpeechCleanup") and the
// caller's line (__builtin_LINE rather than std::source_location, which clang 14 lacks).
std::unique_ptr<const icu::RegexPattern> compileConstantPattern(std::u16string_view pattern,
                                                                uint32_t flags, const char* owner,
                                                                int line = __builtin_LINE());

// One whole-text rewrite: every match of `pattern` is replaced by `replacement`, a template in
// which "$1" stands for the first capture group.
struct RegexRewrite {
    std::unique_ptr<const icu::RegexPattern> pattern;
    icu::UnicodeString replacement;
    // Names the rule in log lines.
    const char* name = "";
};

// A per-call matcher that gives up at the time limit or on a backtrack stack overflow.
class GuardedMatcher {
public:
    GuardedMatcher(const icu::RegexPattern& pattern, const icu::UnicodeString& input);
    GuardedMatcher(const GuardedMatcher&) = delete;
    GuardedMatcher& operator=(const GuardedMatcher&) = delete;
    ~GuardedMatcher();

    // The next match after the previous one; false at the end and on failure.
    bool find();
    // Restarts the search at a UTF-16 offset (resets the append position).
    bool find(int32_t from);
    // The time limit fired or the matcher failed; the rule must be skipped for this text.
    bool failed() const { return stopped_ || U_FAILURE(status_); }
    icu::RegexMatcher& matcher() { return *matcher_; }
    UErrorCode& status() { return status_; }

    // One line: which rule of which owner was skipped, why, and the text's length.
    void logSkipped(std::string_view owner, std::string_view rule) const;

private:
    static UBool keepGoing(const void* context, int32_t steps);
    static UBool keepFinding(const void* context, int64_t matchIndex);
    bool pastDeadline() const;

    std::unique_ptr<icu::RegexMatcher> matcher_;
    std::chrono::steady_clock::time_point deadline_;
    mutable std::uint32_t calls_ = 0;
    mutable bool stopped_ = false;
    int32_t inputLength_ = 0;
    UErrorCode status_ = U_ZERO_ERROR;
};

// Applies the rewrite to the whole text in place. On failure the text is left as it was and one
// line is logged. Returns whether the text changed.
bool rewriteAll(icu::UnicodeString& text, const RegexRewrite& rewrite, std::string_view owner);

} // namespace lectorbell::detail
