#include "ExtractorHarness.hpp"

#include <filesystem>
#include <gtest/gtest.h>

namespace lectorbell::testing {
namespace {

using Strings = std::vector<std::string>;

TEST(TextAtPointer, leafWalkAnchorsThroughMarkersAndSkipsLandmarksControlsAndDuplicates) {
    ExtractorHarness probe{FixtureTree::fromFile("web_page.json")};
    // "mountains" starts at character 24 of its leaf; 10 pt per character.
    CursorOutcome outcome = probe.at(100, {260 + 26 * 10 + 5, 160});
    ASSERT_TRUE(outcome.result);
    EXPECT_EQ(outcome.result->strategy, "leaf-walk");
    EXPECT_EQ(outcome.result->precision, AnchorPrecision::word);
    EXPECT_FALSE(outcome.result->walkCut);
    EXPECT_EQ(blockTexts(*outcome.result),
              (Strings{"mountains and flows south. Its water is cold.",
                       "Fishermen say the brown trout bite at dawn.", "Read more.",
                       "Table with columns: Town, People.", "Alder. People: 1200.",
                       "Birchwood. People: 5400.", "After the last town the river widens."}));
    EXPECT_TRUE(probe.traced("markers: stream 111 chars, aligned=24") ||
                probe.tracedStart("markers: stream "));
    EXPECT_TRUE(probe.traced("cursor: leaf walk under AXGroup/AXDocumentArticle"));
    EXPECT_TRUE(probe.traced("cursor: leaf walk ok, 7 blocks, precision word"));
    ASSERT_TRUE(outcome.result->refinement);
    EXPECT_EQ(toUtf8(outcome.result->refinement->blocksFromLeafOffset->front().text),
              "The river begins in the mountains and flows south. Its water is cold.");
}

TEST(TextAtPointer, hitInASidebarIsRescopedToTheArticleAroundTheAlignedText) {
    ExtractorHarness probe{FixtureTree::fromFile("web_page.json")};
    // The sidebar group ends at x 240; the article's text starts at 260, level with the point.
    CursorOutcome outcome = probe.at(100, {230, 405});
    ASSERT_TRUE(outcome.result);
    EXPECT_TRUE(probe.traced("cursor: leaf walk under AXWebArea"));
    EXPECT_TRUE(
        probe.traced("cursor: re-scoped to AXGroup/AXDocumentArticle around the aligned text"));
    EXPECT_EQ(blockTexts(*outcome.result), (Strings{"After the last town the river widens."}));
    EXPECT_EQ(outcome.result->precision, AnchorPrecision::element);
}

TEST(TextAtPointer, pointedTableRowReadsFromThatRow) {
    ExtractorHarness probe{FixtureTree::fromFile("web_page.json")};
    CursorOutcome outcome = probe.at(100, {270, 360});
    ASSERT_TRUE(outcome.result);
    EXPECT_EQ(outcome.result->strategy, "table");
    EXPECT_EQ(blockTexts(*outcome.result), (Strings{"Birchwood. People: 5400."}));
    EXPECT_TRUE(probe.traced("cursor: table, 1 rows from the pointed row"));
}

TEST(TextAtPointer, editorInsideAScrollAreaIsFoundByTheChildrenProbe) {
    struct Case {
        const char* name;
        ScreenPoint point;
        std::optional<std::string> firstBlock;
        AnchorPrecision precision;
        const char* traceLine;
    };
    const Case cases[] = {
        // "more" is at column 16 of the second line.
        {"word",
         {100 + 16 * 10 + 3, 30 + 20},
         "more words in it.",
         AnchorPrecision::word,
         "text-view: 2 blocks, precision word"},
        {"margin clamped",
         {50, 30 + 20},
         "Second line has more words in it.",
         AnchorPrecision::sentence,
         "text-view: candidate AXTextArea"},
        {"far left",
         {0, 30 + 20},
         std::nullopt,
         AnchorPrecision::element,
         "text-view: pointer outside view frame"},
        {"below the text",
         {150, 80 + 2 * 20 + 10},
         std::nullopt,
         AnchorPrecision::element,
         "text-view: character bounds 50pt from pointer (line 20)"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ExtractorHarness probe{FixtureTree::fromFile("editor.json")};
        CursorOutcome outcome = probe.at(200, c.point);
        EXPECT_FALSE(outcome.error);
        EXPECT_TRUE(probe.traced(c.traceLine)) << ::testing::PrintToString(probe.trace);
        if (!c.firstBlock) {
            EXPECT_FALSE(outcome.result);
            continue;
        }
        ASSERT_TRUE(outcome.result);
        EXPECT_EQ(outcome.result->strategy, "text-view");
        EXPECT_EQ(toUtf8(outcome.result->blocks.front().text), *c.firstBlock);
        EXPECT_EQ(outcome.result->precision, c.precision);
    }
}

TEST(TextAtPointer, passwordFieldFailsWithoutReadingOrTracingIt) {
    const ScreenPoint points[] = {{150, 30}, {110, 40}};
    for (ScreenPoint point : points) {
        ExtractorHarness probe{FixtureTree::fromFile("password_form.json")};
        CursorOutcome outcome = probe.at(300, point);
        ASSERT_TRUE(outcome.error);
        EXPECT_EQ(outcome.error->userMessage(), "Secure field \u2014 not reading");
        EXPECT_FALSE(outcome.result);
        EXPECT_EQ(probe.tree->secureReads(), 0);
        EXPECT_FALSE(probe.anyTraceContains("hunter2"));
    }
}

TEST(TextAtPointer, accessibilityOffOrNoApplicationGiveTheRightAnswer) {
    ExtractorHarness off{FixtureTree::fromFile("web_page.json")};
    off.tree->trusted = false;
    CursorOutcome refused = off.at(100, {300, 160});
    ASSERT_TRUE(refused.error);
    EXPECT_EQ(refused.error->kind(), ReadingError::Kind::accessibilityPermissionNeeded);

    ExtractorHarness other{FixtureTree::fromFile("web_page.json")};
    CursorOutcome none = other.at(999, {300, 160});
    EXPECT_FALSE(none.result);
    EXPECT_FALSE(none.error);

    ExtractorHarness outside{FixtureTree::fromFile("web_page.json")};
    CursorOutcome miss = outside.at(100, {-50, -50});
    EXPECT_FALSE(miss.result);
    EXPECT_TRUE(outside.traced("hit-test AXError -25212"));
    EXPECT_TRUE(outside.traced("cursor: hit-test failed"));
}

TEST(TextAtPointer, chromiumFamilyAppIsAskedOnceToBuildItsTree) {
    ExtractorHarness probe{FixtureTree::fromFile("web_page.json")};
    probe.tree->buildsOnRequest = true;
    auto started = probe.tree->now();
    probe.at(100, {300, 160});
    auto firstTook = probe.tree->now() - started;
    started = probe.tree->now();
    probe.at(100, {300, 160});
    auto secondTook = probe.tree->now() - started;
    EXPECT_EQ(probe.tree->manualRequests(), 1);
    // The pause that lets the application build its tree, once.
    EXPECT_EQ(firstTook, std::chrono::milliseconds{300});
    EXPECT_EQ(secondTook, std::chrono::milliseconds{0});

    ExtractorHarness plain{FixtureTree::fromFile("web_page.json")};
    started = plain.tree->now();
    plain.at(100, {300, 160});
    EXPECT_EQ(plain.tree->manualRequests(), 0);
    EXPECT_EQ(plain.tree->now() - started, std::chrono::milliseconds{0});
}

} // namespace
} // namespace lectorbell::testing
