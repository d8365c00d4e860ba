#include "lectorbell/Utf8.hpp"
#include "sources/Leaves.hpp"

#include <gtest/gtest.h>

namespace lectorbell {
namespace {

Leaf leaf(const char* text, std::optional<ScreenRect> frame, bool heading = false) {
    return Leaf{nullptr, fromUtf8(text), frame, heading, false};
}

TEST(BestAligned, scoresDistanceAndPrefersTheEarlierLeafOnATie) {
    struct Case {
        const char* name;
        std::vector<Leaf> leaves;
        ScreenPoint point;
        std::optional<std::size_t> expected;
    };
    const Case cases[] = {
        {"tie keeps the earlier leaf",
         {leaf("a", ScreenRect{0, 0, 50, 20}), leaf("b", ScreenRect{0, 0, 50, 20})},
         {10, 10},
         0},
        {"frameless leaves are ignored",
         {leaf("a", std::nullopt), leaf("b", ScreenRect{0, 0, 50, 20})},
         {10, 10},
         1},
        {"too far below", {leaf("a", ScreenRect{0, 0, 50, 20})}, {10, 36}, std::nullopt},
        {"too far beside", {leaf("a", ScreenRect{0, 0, 50, 20})}, {111, 10}, std::nullopt},
        {"nearer line wins",
         {leaf("a", ScreenRect{0, 0, 50, 20}), leaf("b", ScreenRect{0, 22, 50, 20})},
         {10, 24},
         1},
        {"left of a split line takes the run that starts it",
         {leaf("start", ScreenRect{100, 0, 40, 20}), leaf("rest", ScreenRect{108, 0, 40, 20})},
         {90, 10},
         0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(LeafWalk::bestAligned(c.leaves, c.point), c.expected);
    }
}

TEST(LeafParagraphs, joinsLinesAndRunsAndSplitsAtHeadingsGapsAndSentenceEnds) {
    std::vector<Leaf> leaves{
        leaf("Title", ScreenRect{0, 0, 100, 30}, true),
        leaf("A line that wraps", ScreenRect{0, 40, 300, 20}),
        leaf("onto the next line ", ScreenRect{0, 60, 300, 20}),
        leaf("with a link", ScreenRect{300, 60, 80, 20}),
        leaf("Far below.", ScreenRect{0, 200, 100, 20}),
        leaf("No frame", std::nullopt),
        leaf("Also none.", std::nullopt),
        leaf("After a stop", std::nullopt),
    };
    std::vector<ReadingBlock> blocks = LeafWalk::paragraphs(leaves, 3);
    std::vector<std::string> texts;
    for (const ReadingBlock& block : blocks) {
        texts.push_back(toUtf8(block.text));
    }
    EXPECT_EQ(texts,
              (std::vector<std::string>{"Title", "A line that wraps onto the next line with a link",
                                        "Far below.", "No frame Also none.", "After a stop"}));
    EXPECT_EQ(blocks[0].role, BlockRole::heading);
    EXPECT_EQ(blocks[1].role, BlockRole::body);
    EXPECT_EQ(blocks[1].bounds, (ScreenRect{0, 40, 380, 40}));
    EXPECT_EQ(blocks[0].sourceOrder, 3);
    EXPECT_EQ(blocks[4].sourceOrder, 7);
}

} // namespace
} // namespace lectorbell
