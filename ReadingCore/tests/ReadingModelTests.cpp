#include "lectorbell/ReadingModel.hpp"

#include <gtest/gtest.h>

namespace lectorbell {
namespace {

ReadingBlock block(std::u16string text) {
    return ReadingBlock{Uuid::random(), std::move(text), BlockRole::body, std::nullopt, 0};
}

TEST(ReadingModel, RawValuesRoundTripAndRejectEverythingElse) {
    for (auto mode : {ReadingMode::selectionOnly, ReadingMode::cursorContinuous}) {
        EXPECT_EQ(readingModeFromRawValue(rawValue(mode)), mode);
    }
    for (auto origin : {TextOrigin::accessibilitySelection, TextOrigin::accessibilityCursor,
                        TextOrigin::localOCR}) {
        EXPECT_EQ(textOriginFromRawValue(rawValue(origin)), origin);
    }
    for (int raw = 0; raw <= 5; ++raw) {
        ASSERT_TRUE(anchorPrecisionFromRawValue(raw));
        EXPECT_EQ(rawValue(*anchorPrecisionFromRawValue(raw)), raw);
    }
    for (int i = 0; i <= static_cast<int>(BlockRole::unknown); ++i) {
        auto role = static_cast<BlockRole>(i);
        EXPECT_EQ(blockRoleFromRawValue(rawValue(role)), role);
    }
    EXPECT_EQ(rawValue(BlockRole::listItem), "listItem");
    EXPECT_EQ(rawValue(TextOrigin::localOCR), "localOCR");
    EXPECT_EQ(description(AnchorPrecision::paragraph), "paragraph");
    EXPECT_EQ(readingModeFromRawValue("selection"), std::nullopt);
    EXPECT_EQ(readingModeFromRawValue("SelectionOnly"), std::nullopt);
    EXPECT_EQ(readingModeFromRawValue(""), std::nullopt);
    EXPECT_EQ(anchorPrecisionFromRawValue(6), std::nullopt);
    EXPECT_EQ(anchorPrecisionFromRawValue(-1), std::nullopt);
    EXPECT_EQ(confidenceCategoryFromRawValue("High"), std::nullopt);
    EXPECT_EQ(blockRoleFromRawValue("paragraph"), std::nullopt);
}

TEST(ReadingModel, OrderingsFollowRawValueAndRank) {
    EXPECT_LT(ConfidenceCategory::low, ConfidenceCategory::medium);
    EXPECT_LT(ConfidenceCategory::medium, ConfidenceCategory::high);
    EXPECT_EQ(rank(ConfidenceCategory::high), 2);
    EXPECT_LT(AnchorPrecision::word, AnchorPrecision::line);
    EXPECT_GE(AnchorPrecision::element, AnchorPrecision::paragraph);
}

TEST(ReadingModel, LabelsAndStatusTexts) {
    EXPECT_EQ(label(TextOrigin::accessibilitySelection), "Selection (Accessibility)");
    EXPECT_EQ(label(TextOrigin::accessibilityCursor), "Accessibility text");
    EXPECT_EQ(label(TextOrigin::localOCR), "On-device OCR (visible text)");
    EXPECT_EQ(statusText(ReadingEndReason::selectionCompleted), "Finished selection");
    EXPECT_EQ(statusText(ReadingEndReason::availableContentEnded), "Finished available document");
    EXPECT_EQ(statusText(ReadingEndReason::visibleTextEnded), "End of visible text");
    EXPECT_EQ(statusText(ReadingEndReason::readingLimitReached), "Stopped at reading limit");
    EXPECT_EQ(statusText(ReadingEndReason::manuallyStopped), "Stopped");
}

TEST(ReadingModel, TotalUTF16CountsCodeUnits) {
    ReadingPayload payload;
    EXPECT_EQ(payload.totalUTF16(), 0);
    payload.blocks = {block(u"\U0001F600"), block(u"\u00E9"), block(u"e\u0301"), block(u"")};
    EXPECT_EQ(payload.totalUTF16(), 2 + 1 + 2);
}

TEST(ReadingModel, NaturalEndReason) {
    struct Case {
        ReadingMode mode;
        TextOrigin origin;
        bool truncated;
        ReadingEndReason expected;
    };
    const Case cases[] = {
        {ReadingMode::selectionOnly, TextOrigin::localOCR, true,
         ReadingEndReason::selectionCompleted},
        {ReadingMode::cursorContinuous, TextOrigin::localOCR, true,
         ReadingEndReason::readingLimitReached},
        {ReadingMode::cursorContinuous, TextOrigin::localOCR, false,
         ReadingEndReason::visibleTextEnded},
        {ReadingMode::cursorContinuous, TextOrigin::accessibilityCursor, false,
         ReadingEndReason::availableContentEnded},
        {ReadingMode::cursorContinuous, TextOrigin::accessibilitySelection, false,
         ReadingEndReason::availableContentEnded},
    };
    for (const Case& c : cases) {
        ReadingPayload payload;
        payload.mode = c.mode;
        payload.origin = c.origin;
        payload.truncatedAtLimit = c.truncated;
        EXPECT_EQ(payload.naturalEndReason(), c.expected) << rawValue(c.origin);
    }
}

TEST(ReadingModel, ErrorMessagesAreExact) {
    using Kind = ReadingError::Kind;
    struct Case {
        ReadingError error;
        const char* message;
    };
    const Case cases[] = {
        {ReadingError::appExcluded("Notes"), "Reading is turned off for Notes"},
        {ReadingError::hotkeyRegistrationFailed("\u2325R"),
         "Shortcut \u2325R is taken \u2014 choose another in Settings"},
        {ReadingError{Kind::accessibilityPermissionNeeded}, "Accessibility permission needed"},
        {ReadingError{Kind::screenCapturePermissionNeeded},
         "No accessible text here. Screen capture permission needed for OCR"},
        {ReadingError{Kind::noExternalWindow}, "No app window under the pointer"},
        {ReadingError{Kind::noReadableTextNearCursor}, "No readable text near cursor"},
        {ReadingError{Kind::ambiguousPosition},
         "Pointer is between columns \u2014 point closer to the text"},
        {ReadingError{Kind::secureField}, "Secure field \u2014 not reading"},
        {ReadingError{Kind::captureNotAllowed}, "This app doesn't allow screen reading here"},
        {ReadingError{Kind::ocrFoundNothing}, "No readable text found on screen near cursor"},
        {ReadingError{Kind::selectionUnsupported},
         "This app has a selection but doesn't expose its text"},
        {ReadingError{Kind::elementInvalidated},
         "The text changed before it could be read \u2014 try again"},
        {ReadingError{Kind::appNotResponding}, "The app didn't respond in time \u2014 try again"},
        {ReadingError{Kind::speechUnavailable}, "Selected voice is unavailable"},
        {ReadingError{Kind::audioOutputUnavailable}, "No audio output device"},
        {ReadingError::textRecognitionUnavailable("tesseract-ocr-eng"),
         "Install tesseract-ocr-eng to read text on screen"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(c.error.userMessage(), c.message);
        EXPECT_EQ(c.error.isPermissionProblem(),
                  c.error.kind() == Kind::accessibilityPermissionNeeded ||
                      c.error.kind() == Kind::screenCapturePermissionNeeded);
    }
}

TEST(ReadingModel, ErrorsCompareByKindAndPayload) {
    EXPECT_EQ(ReadingError::appExcluded("Mail"), ReadingError::appExcluded("Mail"));
    EXPECT_NE(ReadingError::appExcluded("Mail"), ReadingError::appExcluded("Notes"));
    EXPECT_NE(ReadingError::appExcluded(""), ReadingError{ReadingError::Kind::secureField});
    // Kinds without a payload ignore one passed by mistake.
    EXPECT_EQ(ReadingError(ReadingError::Kind::secureField, "x"),
              ReadingError{ReadingError::Kind::secureField});
}

TEST(ReadingModel, BlocksCompareTheirIdentity) {
    ReadingBlock a = block(u"same");
    ReadingBlock b = a;
    EXPECT_EQ(a, b);
    b.id = Uuid::random();
    EXPECT_NE(a, b);
    EXPECT_EQ(a.id.string().size(), 36U);
    EXPECT_EQ(a.id.string()[14], '4');
}

} // namespace
} // namespace lectorbell
