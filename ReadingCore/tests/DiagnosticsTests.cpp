#include "lectorbell/Diagnostics.hpp"

#include <gtest/gtest.h>

namespace lectorbell {
namespace {

TEST(Diagnostics, SizeBuckets) {
    struct Case {
        std::int64_t n;
        const char* bucket;
    };
    const Case cases[] = {{0, "empty"},          {1, "<200 chars"},     {199, "<200 chars"},
                          {200, "<2k chars"},    {1999, "<2k chars"},   {2000, "<20k chars"},
                          {19999, "<20k chars"}, {20000, "20k+ chars"}, {-3, "<200 chars"}};
    for (const Case& c : cases) {
        EXPECT_EQ(DiagnosticRecord::bucket(c.n), c.bucket) << c.n;
    }
}

// The clock is in seconds, as every clock of a reading; marks keep whole nanoseconds of it.
TEST(Diagnostics, StopwatchTruncatesToWholeMilliseconds) {
    double now = 5.0;
    Stopwatch watch{[&now] { return now; }};
    now += 0.001999999;
    watch.mark("ax-cursor");
    now += 0.308000001;
    watch.mark("first-speech");
    const std::vector<StageTiming> expected{{"ax-cursor", 1}, {"first-speech", 310}};
    EXPECT_EQ(watch.timingsMS(), expected);
    EXPECT_EQ(watch.elapsedMS(), 310);
}

TEST(DiagnosticsDeathTest, MarkBeforeStartIsFatal) {
    double now = 1.0;
    Stopwatch watch{[&now] { return now; }};
    now = 0.5;
    EXPECT_DEATH(watch.mark("late"), "earlier than its start");
}

TEST(Diagnostics, Summary) {
    const auto date = std::chrono::system_clock::now();
    DiagnosticRecord full{date,
                          "Reading",
                          ReadingMode::cursorContinuous,
                          TextOrigin::accessibilityCursor,
                          AnchorPrecision::word,
                          ConfidenceCategory::high,
                          std::string{"com.example.app"},
                          450,
                          {{"ax-cursor", 42}, {"first-speech", 310}}};
    EXPECT_EQ(full.summary(), "Reading \u00B7 cursor \u00B7 Accessibility text \u00B7 anchor: word"
                              " \u00B7 confidence: high \u00B7 <2k chars \u00B7 ax-cursor 42ms, "
                              "first-speech 310ms");

    DiagnosticRecord bare{
        date, "No text", std::nullopt, std::nullopt, std::nullopt, std::nullopt, std::nullopt,
        0,    {}};
    EXPECT_EQ(bare.summary(), "No text \u00B7 empty");

    DiagnosticRecord ocr{date,
                         "Read",
                         ReadingMode::selectionOnly,
                         TextOrigin::localOCR,
                         std::nullopt,
                         ConfidenceCategory::low,
                         std::nullopt,
                         20'000,
                         {}};
    EXPECT_EQ(ocr.summary(), "Read \u00B7 selection \u00B7 On-device OCR (visible text) \u00B7 "
                             "confidence: low \u00B7 20k+ chars");
    EXPECT_NE(full.id, bare.id);
}

} // namespace
} // namespace lectorbell
