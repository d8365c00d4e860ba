#include "ExtractorHarness.hpp"
#include "LongPage.hpp"

#include <algorithm>
#include <gtest/gtest.h>

namespace lectorbell::testing {
namespace {

std::size_t countOf(const std::vector<std::string>& trace, std::string_view line) {
    return static_cast<std::size_t>(std::count(trace.begin(), trace.end(), line));
}

TEST(Cancellation, aCancelledLookupStopsCallingTheAppAndEndsWithNothing) {
    struct Case {
        const char* name;
        std::function<std::unique_ptr<FixtureTree>()> tree;
        ScreenPoint point;
        ProcessID pid;
        // Cancelled after this many calls into the tree (0: before the lookup starts).
        int cancelAfter;
    };
    const Case cases[] = {
        {"before the lookup starts",
         [] { return std::make_unique<FixtureTree>(longPage(50, "ab")); },
         {20, 110},
         7,
         0},
        {"after the hit test",
         [] { return std::make_unique<FixtureTree>(longPage(50, "ab")); },
         {20, 110},
         7,
         1},
        {"in the middle of a long walk",
         [] { return std::make_unique<FixtureTree>(longPage(2500, "ab")); },
         {20, 110},
         7,
         300},
        {"while reading a text view",
         [] { return FixtureTree::fromFile("editor.json"); },
         {100 + 16 * 10 + 3, 30 + 20},
         200,
         8},
        // A password field found after the press went stale is not reported either.
        {"over a password field",
         [] { return FixtureTree::fromFile("password_form.json"); },
         {150, 30},
         300,
         1},
        // Nor is an application that stopped answering.
        {"in an application that hangs",
         [] { return std::make_unique<FixtureTree>(longPage(50, "ab", 0, true)); },
         {20, 110},
         7,
         2},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ExtractorHarness probe{c.tree()};
        CancelToken cancel;
        if (c.cancelAfter == 0) {
            cancel.cancel();
        }
        probe.tree->afterCall = [&](int calls) {
            if (calls == c.cancelAfter) {
                cancel.cancel();
            }
        };
        CursorOutcome outcome = probe.at(c.pid, c.point, false, cancel);
        EXPECT_TRUE(outcome.cancelled);
        EXPECT_FALSE(outcome.result);
        EXPECT_FALSE(outcome.error);
        // The step under way when it was cancelled may make its last call or two; no new step
        // starts.
        EXPECT_LE(probe.tree->calls(), c.cancelAfter + 2);
        EXPECT_EQ(countOf(probe.trace, "cursor: cancelled"), 1U)
            << ::testing::PrintToString(probe.trace);
        EXPECT_FALSE(probe.tracedStart("cursor: leaf walk ok"));
    }
}

TEST(Cancellation, onlyTheCancelledLookupIsCancelled) {
    ExtractorHarness probe{std::make_unique<FixtureTree>(longPage(50, "ab"))};
    CancelToken stale;
    stale.cancel();
    EXPECT_TRUE(probe.at(7, {20, 110}, false, stale).cancelled);
    CursorOutcome next = probe.at(7, {20, 110});
    EXPECT_FALSE(next.cancelled);
    ASSERT_TRUE(next.result);
    EXPECT_EQ(next.result->blocks.size(), 51U);
    EXPECT_EQ(countOf(probe.trace, "cursor: cancelled"), 1U);
}

} // namespace
} // namespace lectorbell::testing
