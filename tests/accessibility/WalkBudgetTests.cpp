#include "ExtractorHarness.hpp"
#include "LongPage.hpp"

#include <gtest/gtest.h>

namespace lectorbell::testing {
namespace {

using nlohmann::json;

TEST(WalkBudget, eachLimitCutsTheWalkAndKeepsWhatWasCollected) {
    struct Case {
        const char* name;
        json page;
        bool quick;
        // Upper bound of tree calls the walk may make.
        int maxCalls;
    };
    const Case cases[] = {
        {"quick walk of a 5000-node page stops near 700 nodes", longPage(2500, "ab"), true, 2000},
        {"normal walk runs out of characters", longPage(400, std::string(1000, 'x')), false, 2000},
        {"quick walk meets its deadline", longPage(2500, "ab", 1.0), true, 400},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ExtractorHarness probe{std::make_unique<FixtureTree>(c.page)};
        auto started = probe.tree->now();
        CursorOutcome outcome = probe.at(7, {20, 110}, c.quick);
        ASSERT_TRUE(outcome.result);
        EXPECT_TRUE(outcome.result->walkCut);
        EXPECT_EQ(outcome.result->strategy, "leaf-walk");
        EXPECT_LE(probe.tree->calls(), c.maxCalls);
        EXPECT_LT(probe.tree->now() - started, std::chrono::milliseconds{c.quick ? 400 : 1600});
        EXPECT_GT(outcome.result->blocks.size(), 1U);
    }
}

TEST(WalkBudget, quickWalkOfASmallPageIsNotCut) {
    ExtractorHarness probe{std::make_unique<FixtureTree>(longPage(20, "ab"))};
    CursorOutcome outcome = probe.at(7, {20, 110}, true);
    ASSERT_TRUE(outcome.result);
    EXPECT_FALSE(outcome.result->walkCut);
    EXPECT_EQ(outcome.result->blocks.size(), 21U);
}

TEST(WalkBudget, anApplicationThatStopsAnsweringEndsTheLookupAsNotResponding) {
    ExtractorHarness probe{std::make_unique<FixtureTree>(longPage(50, "ab", 0, true))};
    CursorOutcome outcome = probe.at(7, {20, 110});
    ASSERT_TRUE(outcome.error);
    EXPECT_EQ(outcome.error->userMessage(), "The app didn't respond in time \u2014 try again");
}

TEST(WalkBudget, absurdlyDeepTreesAreCutWithoutHarm) {
    // 400 nested groups under the article, with text at the bottom, after the pointed leaf.
    json deep = {
        {"role", "AXStaticText"}, {"value", "Buried text."}, {"frame", {10, 300, 120, 20}}};
    for (int level = 0; level < 400; ++level) {
        deep = {{"role", "AXGroup"}, {"frame", {0, 300, 900, 20}}, {"children", {deep}}};
    }
    json page = longPage(1, "ab");
    page["root"]["children"][0]["children"][0]["children"][0]["children"].push_back(deep);
    ExtractorHarness probe{std::make_unique<FixtureTree>(page)};
    CursorOutcome outcome = probe.at(7, {20, 110});
    ASSERT_TRUE(outcome.result);
    for (const ReadingBlock& block : outcome.result->blocks) {
        EXPECT_NE(toUtf8(block.text), "Buried text.");
    }
}

} // namespace
} // namespace lectorbell::testing
