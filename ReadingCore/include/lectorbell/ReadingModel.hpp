#pragma once

#include "lectorbell/ScreenGeometry.hpp"
#include "lectorbell/Uuid.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lectorbell {

// Each enumeration with a stored text form has rawValue() and a <Type>FromRawValue() that
// yields no value for anything but the exact raw values.

enum class ReadingMode { selectionOnly, cursorContinuous };
std::string_view rawValue(ReadingMode mode);
std::optional<ReadingMode> readingModeFromRawValue(std::string_view raw);

enum class TextOrigin { accessibilitySelection, accessibilityCursor, localOCR };
std::string_view rawValue(TextOrigin origin);
std::optional<TextOrigin> textOriginFromRawValue(std::string_view raw);
// Shown in diagnostics summaries.
std::string_view label(TextOrigin origin);

// Ordered by raw value: a smaller value is a finer anchor.
enum class AnchorPrecision : int {
    character = 0,
    word = 1,
    sentence = 2,
    line = 3,
    paragraph = 4,
    element = 5,
};
int rawValue(AnchorPrecision precision);
std::optional<AnchorPrecision> anchorPrecisionFromRawValue(std::int64_t raw);
std::string_view description(AnchorPrecision precision);

// Ordered by rank: low < medium < high.
enum class ConfidenceCategory : int { low = 0, medium = 1, high = 2 };
std::string_view rawValue(ConfidenceCategory confidence);
std::optional<ConfidenceCategory> confidenceCategoryFromRawValue(std::string_view raw);
int rank(ConfidenceCategory confidence);

enum class ReadingEndReason {
    selectionCompleted,
    availableContentEnded,
    visibleTextEnded,
    readingLimitReached,
    manuallyStopped,
};
std::string_view statusText(ReadingEndReason reason);

enum class BlockRole {
    title,
    heading,
    body,
    listItem,
    quote,
    caption,
    code,
    table,
    footnote,
    navigation,
    button,
    sidebar,
    footer,
    unknown,
};
std::string_view rawValue(BlockRole role);
std::optional<BlockRole> blockRoleFromRawValue(std::string_view raw);

// One contiguous piece of text in reading order.
struct ReadingBlock {
    Uuid id;
    std::u16string text;
    BlockRole role = BlockRole::unknown;
    std::optional<ScreenRect> bounds;
    // Position in the order the producer found it, before any reordering.
    std::int64_t sourceOrder = 0;

    friend bool operator==(const ReadingBlock&, const ReadingBlock&) = default;
};

// Everything a reading session needs to start.
struct ReadingPayload {
    ReadingMode mode = ReadingMode::cursorContinuous;
    TextOrigin origin = TextOrigin::accessibilityCursor;
    std::vector<ReadingBlock> blocks;
    AnchorPrecision precision = AnchorPrecision::element;
    ConfidenceCategory confidence = ConfidenceCategory::low;
    bool canContinueOffscreen = false;
    bool truncatedAtLimit = false;
    std::optional<std::string> sourceBundleID;

    // Sum of the blocks' UTF-16 lengths.
    std::int64_t totalUTF16() const;
    // Why the reading ends when speech runs out of text by itself.
    ReadingEndReason naturalEndReason() const;

    friend bool operator==(const ReadingPayload&, const ReadingPayload&) = default;
};

// Every failure shown to the user, with its exact message.
class ReadingError {
public:
    enum class Kind {
        appExcluded,
        hotkeyRegistrationFailed,
        accessibilityPermissionNeeded,
        screenCapturePermissionNeeded,
        noExternalWindow,
        noReadableTextNearCursor,
        ambiguousPosition,
        secureField,
        captureNotAllowed,
        ocrFoundNothing,
        selectionUnsupported,
        elementInvalidated,
        appNotResponding,
        speechUnavailable,
        // The sound device (or the file standing in for it) failed while the reading played.
        audioOutputUnavailable,
        // The text recogniser cannot start: what it needs is not installed.
        textRecognitionUnavailable,
    };

    // The payload is the application name for appExcluded, the shortcut's display text for
    // hotkeyRegistrationFailed and the package to install for textRecognitionUnavailable; the
    // other kinds ignore it.
    explicit ReadingError(Kind kind, std::string payload = {});
    static ReadingError appExcluded(std::string applicationName);
    static ReadingError hotkeyRegistrationFailed(std::string shortcutText);
    static ReadingError textRecognitionUnavailable(std::string package);

    Kind kind() const { return kind_; }
    const std::string& payload() const { return payload_; }
    std::string userMessage() const;
    bool isPermissionProblem() const;

    friend bool operator==(const ReadingError&, const ReadingError&) = default;

private:
    Kind kind_;
    std::string payload_;
};

} // namespace lectorbell
