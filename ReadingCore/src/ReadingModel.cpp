#include "lectorbell/ReadingModel.hpp"

#include "EnumNames.hpp"
#include "lectorbell/Fatal.hpp"

#include <utility>

namespace lectorbell {

namespace {

constexpr std::array<std::string_view, 2> readingModeNames{"selectionOnly", "cursorContinuous"};
constexpr std::array<std::string_view, 3> textOriginNames{"accessibilitySelection",
                                                          "accessibilityCursor", "localOCR"};
constexpr std::array<std::string_view, 3> textOriginLabels{
    "Selection (Accessibility)", "Accessibility text", "On-device OCR (visible text)"};
constexpr std::array<std::string_view, 6> anchorPrecisionNames{"character", "word",      "sentence",
                                                               "line",      "paragraph", "element"};
constexpr std::array<std::string_view, 3> confidenceNames{"low", "medium", "high"};
constexpr std::array<std::string_view, 5> endReasonTexts{
    "Finished selection", "Finished available document", "End of visible text",
    "Stopped at reading limit", "Stopped"};
constexpr std::array<std::string_view, 14> blockRoleNames{
    "title", "heading",  "body",       "listItem", "quote",   "caption", "code",
    "table", "footnote", "navigation", "button",   "sidebar", "footer",  "unknown"};

} // namespace

std::string_view rawValue(ReadingMode mode) {
    return detail::nameOf(readingModeNames, mode);
}
std::optional<ReadingMode> readingModeFromRawValue(std::string_view raw) {
    return detail::caseNamed<ReadingMode>(readingModeNames, raw);
}

std::string_view rawValue(TextOrigin origin) {
    return detail::nameOf(textOriginNames, origin);
}
std::optional<TextOrigin> textOriginFromRawValue(std::string_view raw) {
    return detail::caseNamed<TextOrigin>(textOriginNames, raw);
}
std::string_view label(TextOrigin origin) {
    return detail::nameOf(textOriginLabels, origin);
}

int rawValue(AnchorPrecision precision) {
    return static_cast<int>(precision);
}
std::optional<AnchorPrecision> anchorPrecisionFromRawValue(std::int64_t raw) {
    if (raw < 0 || raw > 5) {
        return std::nullopt;
    }
    return static_cast<AnchorPrecision>(raw);
}
std::string_view description(AnchorPrecision precision) {
    return detail::nameOf(anchorPrecisionNames, precision);
}

std::string_view rawValue(ConfidenceCategory confidence) {
    return detail::nameOf(confidenceNames, confidence);
}
std::optional<ConfidenceCategory> confidenceCategoryFromRawValue(std::string_view raw) {
    return detail::caseNamed<ConfidenceCategory>(confidenceNames, raw);
}
int rank(ConfidenceCategory confidence) {
    return static_cast<int>(confidence);
}

std::string_view statusText(ReadingEndReason reason) {
    return detail::nameOf(endReasonTexts, reason);
}

std::string_view rawValue(BlockRole role) {
    return detail::nameOf(blockRoleNames, role);
}
std::optional<BlockRole> blockRoleFromRawValue(std::string_view raw) {
    return detail::caseNamed<BlockRole>(blockRoleNames, raw);
}

std::int64_t ReadingPayload::totalUTF16() const {
    std::int64_t total = 0;
    for (const ReadingBlock& block : blocks) {
        if (__builtin_add_overflow(total, static_cast<std::int64_t>(block.text.size()), &total)) {
            fatalError("ReadingPayload.totalUTF16 overflowed");
        }
    }
    return total;
}

ReadingEndReason ReadingPayload::naturalEndReason() const {
    if (mode == ReadingMode::selectionOnly) {
        return ReadingEndReason::selectionCompleted;
    }
    if (truncatedAtLimit) {
        return ReadingEndReason::readingLimitReached;
    }
    if (origin == TextOrigin::localOCR) {
        return ReadingEndReason::visibleTextEnded;
    }
    return ReadingEndReason::availableContentEnded;
}

ReadingError::ReadingError(Kind kind, std::string payload)
    : kind_(kind)
    , payload_(kind == Kind::appExcluded || kind == Kind::hotkeyRegistrationFailed ||
                       kind == Kind::textRecognitionUnavailable
                   ? std::move(payload)
                   : std::string{}) {}

ReadingError ReadingError::appExcluded(std::string applicationName) {
    return ReadingError{Kind::appExcluded, std::move(applicationName)};
}

ReadingError ReadingError::hotkeyRegistrationFailed(std::string shortcutText) {
    return ReadingError{Kind::hotkeyRegistrationFailed, std::move(shortcutText)};
}

ReadingError ReadingError::textRecognitionUnavailable(std::string package) {
    return ReadingError{Kind::textRecognitionUnavailable, std::move(package)};
}

std::string ReadingError::userMessage() const {
    switch (kind_) {
    case Kind::appExcluded:
        return "Reading is turned off for " + payload_;
    case Kind::hotkeyRegistrationFailed:
        return "Shortcut " + payload_ + " is taken \u2014 choose another in Settings";
    case Kind::accessibilityPermissionNeeded:
        return "Accessibility permission needed";
    case Kind::screenCapturePermissionNeeded:
        return "No accessible text here. Screen capture permission needed for OCR";
    case Kind::noExternalWindow:
        return "No app window under the pointer";
    case Kind::noReadableTextNearCursor:
        return "No readable text near cursor";
    case Kind::ambiguousPosition:
        return "Pointer is between columns \u2014 point closer to the text";
    case Kind::secureField:
        return "Secure field \u2014 not reading";
    case Kind::captureNotAllowed:
        return "This app doesn't allow screen reading here";
    case Kind::ocrFoundNothing:
        return "No readable text found on screen near cursor";
    case Kind::selectionUnsupported:
        return "This app has a selection but doesn't expose its text";
    case Kind::elementInvalidated:
        return "The text changed before it could be read \u2014 try again";
    case Kind::appNotResponding:
        return "The app didn't respond in time \u2014 try again";
    case Kind::speechUnavailable:
        return "Selected voice is unavailable";
    case Kind::audioOutputUnavailable:
        return "No audio output device";
    case Kind::textRecognitionUnavailable:
        return "Install " + payload_ + " to read text on screen";
    }
    return {};
}

bool ReadingError::isPermissionProblem() const {
    return kind_ == Kind::accessibilityPermissionNeeded ||
           kind_ == Kind::screenCapturePermissionNeeded;
}

} // namespace lectorbell
