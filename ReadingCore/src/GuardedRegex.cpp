#include "GuardedRegex.hpp"

#include "lectorbell/CoreLog.hpp"
#include "lectorbell/Fatal.hpp"

#include <string>

namespace lectorbell::detail {

std::unique_ptr<const icu::RegexPattern>
compileConstantPattern(std::u16string_view pattern, uint32_t flags, const char* owner, int line) {
    UErrorCode status = U_ZERO_ERROR;
    UParseError parseError{};
    std::unique_ptr<const icu::RegexPattern> compiled{
        icu::RegexPattern::compile(readOnlyAlias(pattern), flags, parseError, status)};
    if (U_FAILURE(status) || !compiled) {
        std::string reason = std::string{owner} + ":" + std::to_string(line) +
                             ": regular expression does not compile (" + u_errorName(status) + ")";
        fatalError(reason.c_str());
    }
    return compiled;
}

GuardedMatcher::GuardedMatcher(const icu::RegexPattern& pattern, const icu::UnicodeString& input)
    : deadline_{std::chrono::steady_clock::now() + regexTimeLimit}
    , inputLength_{input.length()} {
    matcher_.reset(pattern.matcher(input, status_));
    if (U_FAILURE(status_) || !matcher_) {
        if (U_SUCCESS(status_)) {
            status_ = U_MEMORY_ALLOCATION_ERROR;
        }
        return;
    }
    // Find progress covers the scan from one start position to the next; the match callback
    // covers long backtracking at a single position (it runs every 10,000 saved states).
    matcher_->setFindProgressCallback(keepFinding, this, status_);
    matcher_->setMatchCallback(keepGoing, this, status_);
}

GuardedMatcher::~GuardedMatcher() = default;

bool GuardedMatcher::pastDeadline() const {
    if (!stopped_ && std::chrono::steady_clock::now() >= deadline_) {
        stopped_ = true;
    }
    return stopped_;
}

UBool GuardedMatcher::keepGoing(const void* context, int32_t) {
    return static_cast<const GuardedMatcher*>(context)->pastDeadline() ? 0 : 1;
}

UBool GuardedMatcher::keepFinding(const void* context, int64_t) {
    const auto* self = static_cast<const GuardedMatcher*>(context);
    // Called once per start position: reading the clock every time would cost more than the
    // scan itself.
    if ((++self->calls_ & 0xFF) != 0) {
        return 1;
    }
    return self->pastDeadline() ? 0 : 1;
}

bool GuardedMatcher::find() {
    if (failed()) {
        return false;
    }
    // A stop asked for by the progress callback comes back as "no match" with no error, so
    // the flag, not the status, tells it from the real end.
    return matcher_->find(status_) && !failed();
}

bool GuardedMatcher::find(int32_t from) {
    if (failed()) {
        return false;
    }
    return matcher_->find(from, status_) && !failed();
}

void GuardedMatcher::logSkipped(std::string_view owner, std::string_view rule) const {
    const char* why = stopped_ || status_ == U_REGEX_TIME_OUT ? "time limit"
                      : status_ == U_REGEX_STACK_OVERFLOW     ? "backtrack stack overflow"
                                                              : u_errorName(status_);
    std::string message{owner};
    message.append(": rule ")
        .append(rule)
        .append(" skipped (")
        .append(why)
        .append(") for a text of ")
        .append(std::to_string(inputLength_))
        .append(" UTF-16 units");
    coreLog("reading", message);
}

bool rewriteAll(icu::UnicodeString& text, const RegexRewrite& rewrite, std::string_view owner) {
    if (text.isEmpty()) {
        return false;
    }
    GuardedMatcher guarded{*rewrite.pattern, text};
    if (!guarded.find()) {
        if (guarded.failed()) {
            guarded.logSkipped(owner, rewrite.name);
        }
        return false;
    }
    // find + appendReplacement instead of replaceAll: replaceAll reports success after a
    // time-out or stack overflow and returns a half-replaced text.
    icu::UnicodeString result;
    do {
        guarded.matcher().appendReplacement(result, rewrite.replacement, guarded.status());
    } while (!guarded.failed() && guarded.find());
    if (guarded.failed()) {
        guarded.logSkipped(owner, rewrite.name);
        return false;
    }
    guarded.matcher().appendTail(result);
    text = std::move(result);
    return true;
}

} // namespace lectorbell::detail
