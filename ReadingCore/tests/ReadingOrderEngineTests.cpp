#include "OCRTestLines.hpp"
#include "lectorbell/ReadingOrderEngine.hpp"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace lectorbell {
namespace {

using test::ocrLine;
using Texts = std::vector<std::u16string>;
namespace Engine = ReadingOrderEngine;

OCRReadingResult success(const Engine::ReadOutcome& outcome) {
    if (const auto* error = std::get_if<ReadingError>(&outcome)) {
        ADD_FAILURE() << "read failed: " << error->userMessage();
        return {};
    }
    return std::get<OCRReadingResult>(outcome);
}

Texts textsOf(const OCRReadingResult& result) {
    Texts texts;
    for (const ReadingBlock& block : result.blocks) {
        texts.push_back(block.text);
    }
    return texts;
}

// Two columns of two lines each, 100 points apart, with a heading across both.
std::vector<OCRLine> twoColumns() {
    return {
        ocrLine(u"Right column starts here and", 300, 40),
        ocrLine(u"Left column starts here and", 100, 40),
        ocrLine(u"it ends with this line.", 100, 54),
        ocrLine(u"it ends with this line too.", 300, 54),
        ocrLine(u"A Heading Across", 100, 10, 16, 9),
    };
}

TEST(ReadingOrderEngine, OrdersColumnsAfterTheHeading) {
    EXPECT_EQ(Engine::orderedParagraphTexts(twoColumns()),
              (Texts{u"A Heading Across", u"Left column starts here and it ends with this line.",
                     u"Right column starts here and it ends with this line too."}));
    EXPECT_FALSE(Engine::isSingleColumn(twoColumns()));
    auto blocks = Engine::orderedBlocks(twoColumns());
    ASSERT_EQ(blocks.size(), 3U);
    EXPECT_EQ(blocks[0].role, BlockRole::title);
    EXPECT_EQ(blocks[1].role, BlockRole::body);
}

TEST(ReadingOrderEngine, CleansLines) {
    std::vector<OCRLine> lines{
        ocrLine(u"  Kept once  ", 10, 10),
        ocrLine(u"Kept once", 11, 10.5), // the same line recognised twice
        ocrLine(u"Kept once", 10, 300),  // the same text elsewhere is read again
        ocrLine(u"Too unsure", 10, 200, 12, 6, 0.2F),
        ocrLine(u" \t ", 10, 100),
        ocrLine(u"Broken", std::numeric_limits<double>::quiet_NaN(), 150),
        ocrLine(u"Flat", 10, 120, 0),
    };
    lines.push_back(ocrLine(u"Odd", 10, 250));
    lines.back().confidence = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(Engine::orderedParagraphTexts(lines), (Texts{u"Kept once", u"Kept once"}));
}

TEST(ReadingOrderEngine, WordsOutsideTheirLineAreDropped) {
    OCRLine line = ocrLine(u"Hello there.", 10, 10);
    line.words[1].utf16Range = {40, 6};
    line.words.push_back({u"x", ScreenRect{0, 0, 1, 1}, {-3, 1}});
    auto lines = Engine::cleanLines({line}, 0.3F);
    ASSERT_EQ(lines.size(), 1U);
    ASSERT_EQ(lines[0].words.size(), 1U);
    // Trimming moves the word ranges with the text.
    auto trimmed = Engine::cleanLines({ocrLine(u"  ab cd", 0, 0)}, 0.3F);
    ASSERT_EQ(trimmed[0].words.size(), 2U);
    EXPECT_EQ(trimmed[0].words[1].utf16Range, (UTF16Range{3, 2}));
    EXPECT_EQ(trimmed[0].text, u"ab cd");
}

TEST(ReadingOrderEngine, MergesSameRowFragments) {
    struct Case {
        std::vector<OCRLine> lines;
        Texts expected;
    };
    const Case cases[] = {
        {{ocrLine(u"world.", 64, 10), ocrLine(u"Hello", 30, 10)}, {u"Hello world."}},
        // Heights 12 and 18 (ratio 1.5): different text sizes stay apart.
        {{ocrLine(u"Hello", 30, 10), ocrLine(u"BIG", 64, 7, 18)}, {u"Hello", u"BIG"}},
        // A gap of a whole line height is not a fragment gap.
        {{ocrLine(u"Hello", 30, 10), ocrLine(u"world.", 72, 10)}, {u"Hello", u"world."}},
    };
    for (const Case& c : cases) {
        auto merged = Engine::mergeSameRowFragments(Engine::cleanLines(c.lines, 0.3F));
        Texts texts;
        for (const auto& line : merged) {
            texts.push_back(line.text);
        }
        EXPECT_EQ(texts, c.expected);
    }
    auto merged = Engine::mergeSameRowFragments({ocrLine(u"ab", 0, 0), ocrLine(u"cd", 14, 0)});
    ASSERT_EQ(merged.size(), 1U);
    EXPECT_EQ(merged[0].words[1].utf16Range, (UTF16Range{3, 2}));
}

TEST(ReadingOrderEngine, SplitsLinesAtGutters) {
    // Two columns read as one line: a gap of 60 points between "here" and "Right".
    OCRLine joined = ocrLine(u"Left side here", 0, 0);
    OCRLine right = ocrLine(u"Right side", 144, 0);
    joined.text += u" Right side";
    for (OCRWord word : right.words) {
        word.utf16Range.location += 15;
        joined.words.push_back(word);
    }
    joined.rect = joined.rect.united(right.rect);
    auto split = Engine::splitAtGutters({joined});
    ASSERT_EQ(split.size(), 2U);
    EXPECT_EQ(split[0].text, u"Left side here");
    EXPECT_EQ(split[1].text, u"Right side");
    EXPECT_EQ(split[1].rect, right.rect);
    EXPECT_EQ(split[1].words[0].utf16Range, (UTF16Range{0, 5}));
}

TEST(ReadingOrderEngine, ParagraphsAndRoles) {
    std::vector<OCRLine> lines{
        ocrLine(u"Shopping", 10, 10),
        ocrLine(u"1) Bread and butter", 10, 26),
        ocrLine(u"2) Next", 10, 40),
        ocrLine(u"- milk", 10, 54),
        ocrLine(u"This paragraph wraps over a", 10, 76),
        ocrLine(u"second line and ends.", 10, 90),
        ocrLine(u"Indented start of the next one that", 30, 104),
        ocrLine(u"runs on.", 10, 118),
    };
    auto blocks = Engine::orderedBlocks(lines);
    Texts texts;
    std::vector<BlockRole> roles;
    for (const auto& block : blocks) {
        texts.push_back(block.text);
        roles.push_back(block.role);
    }
    EXPECT_EQ(texts, (Texts{u"Shopping", u"1) Bread and butter", u"2) Next", u"- milk",
                            u"This paragraph wraps over a second line and ends.",
                            u"Indented start of the next one that runs on."}));
    EXPECT_EQ(roles,
              (std::vector<BlockRole>{BlockRole::heading, BlockRole::listItem, BlockRole::listItem,
                                      BlockRole::listItem, BlockRole::body, BlockRole::body}));
}

TEST(ReadingOrderEngine, JoinsHyphenatedLinesAndRecordsLineOffsets) {
    Engine::Block block;
    block.lines = {ocrLine(u"The segmen-", 0, 0), ocrLine(u"tation works", 0, 14)};
    block.rect = block.lines[0].rect.united(block.lines[1].rect);
    auto paragraphs = Engine::paragraphs(block);
    ASSERT_EQ(paragraphs.size(), 1U);
    EXPECT_EQ(paragraphs[0].text, u"The segmentation works");
    EXPECT_EQ(paragraphs[0].lineOffsets, (std::vector<std::int64_t>{0, 10}));
}

TEST(ReadingOrderEngine, ListMarkers) {
    const std::pair<std::u16string, std::optional<std::u16string>> cases[] = {
        {u"\u2022 item", u"\u2022"},   {u"12. Twelve", u"12."},       {u"b) bee", u"b)"},
        {u"\u2013 dash", u"\u2013"},   {u"1234. no", std::nullopt},   {u"ab. no", std::nullopt},
        {u"2)no space", std::nullopt}, {u"Plain text", std::nullopt}, {u"", std::nullopt},
    };
    for (const auto& [text, marker] : cases) {
        EXPECT_EQ(Engine::listMarker(text), marker);
    }
}

TEST(ReadingOrderEngine, DetectsTables) {
    std::vector<OCRLine> lines{
        ocrLine(u"Fruit", 10, 10),
        ocrLine(u"Price", 110, 10),
        ocrLine(u"Apples", 10, 26),
        ocrLine(u"1.20", 110, 26),
        ocrLine(u"Pears", 10, 42),
        ocrLine(u"0.90", 110, 42),
        ocrLine(u"After the table comes prose.", 10, 80),
    };
    auto blocks = Engine::layout(lines);
    ASSERT_EQ(blocks.size(), 2U);
    ASSERT_TRUE(blocks[0].tableRows.has_value());
    EXPECT_EQ(blocks[0].tableRows->size(), 3U);
    EXPECT_EQ(blocks[0].tableColumns.size(), 2U);
    Texts texts;
    for (const auto& paragraph : blocks[0].paragraphs) {
        texts.push_back(paragraph.text);
        EXPECT_EQ(paragraph.role, BlockRole::table);
    }
    EXPECT_EQ(texts.size(), 3U);
    EXPECT_FALSE(Engine::isSingleColumn(lines));
}

TEST(ReadingOrderEngine, ProseSideBySideIsNoTable) {
    std::vector<OCRLine> lines;
    for (int row = 0; row < 4; ++row) {
        lines.push_back(ocrLine(u"a long line of prose in column one", 10, 10 + 14 * row));
        lines.push_back(ocrLine(u"and another long line in column two", 260, 10 + 14 * row));
    }
    auto blocks = Engine::layout(lines);
    ASSERT_EQ(blocks.size(), 2U);
    EXPECT_FALSE(blocks[0].tableRows.has_value());
    EXPECT_LT(blocks[0].rect.minX(), blocks[1].rect.minX());
}

std::vector<OCRLine> sidebarPage() {
    std::vector<OCRLine> lines{ocrLine(u"Home", 10, 20), ocrLine(u"Products", 10, 50),
                               ocrLine(u"Contact", 10, 80)};
    for (int row = 0; row < 6; ++row) {
        lines.push_back(ocrLine(row == 5 ? u"and this ends." : u"Article text that runs on and on",
                                200, 20 + 14 * row));
    }
    return lines;
}

TEST(ReadingOrderEngine, SkipsSideColumnsUnlessReadingStartsThere) {
    EXPECT_EQ(Engine::orderedParagraphTexts(sidebarPage()).size(), 1U);
    EXPECT_FALSE(Engine::isSingleColumn(sidebarPage()));
    Engine::Config all;
    all.skipSidebars = false;
    auto blocks = Engine::orderedBlocks(sidebarPage(), all);
    ASSERT_EQ(blocks.size(), 4U);
    EXPECT_EQ(blocks[0].role, BlockRole::navigation);

    const auto fromNav = success(Engine::read(sidebarPage(), {20, 56}));
    EXPECT_EQ(textsOf(fromNav).front(), u"Products");
    EXPECT_EQ(fromNav.blocks.size(), 3U); // the rest of the navigation, then the article
    const auto fromArticle = success(Engine::read(sidebarPage(), {250, 30}));
    EXPECT_EQ(fromArticle.blocks.size(), 1U);
}

TEST(ReadingOrderEngine, SingleColumn) {
    std::vector<OCRLine> lines{ocrLine(u"Title", 10, 10, 16, 9),
                               ocrLine(u"Body text here.", 10, 40), ocrLine(u"More body.", 10, 80)};
    EXPECT_TRUE(Engine::isSingleColumn(lines));
    EXPECT_FALSE(Engine::isSingleColumn({}));
}

TEST(ReadingOrderEngine, ReadStartsAtThePointedWord) {
    struct Case {
        ScreenPoint pointer;
        std::u16string firstText;
        AnchorPrecision precision;
    };
    // "Left column starts here and" at x 100 (6 points a character), y 40.
    const Case cases[] = {
        {{170, 45}, u"starts here and it ends with this line.", AnchorPrecision::word},
        {{102, 45},
         u"Left column starts here and it ends with this line.",
         AnchorPrecision::sentence},
        {{60, 46}, u"Left column starts here and it ends with this line.", AnchorPrecision::line},
        {{160, 58}, u"with this line.", AnchorPrecision::word},
        {{330, 44}, u"column starts here and it ends with this line too.", AnchorPrecision::word},
    };
    for (const Case& c : cases) {
        const auto result = success(Engine::read(twoColumns(), c.pointer));
        ASSERT_FALSE(result.blocks.empty());
        EXPECT_EQ(result.blocks.front().text, c.firstText) << c.pointer.x;
        EXPECT_EQ(result.precision, c.precision) << c.pointer.x;
        EXPECT_EQ(result.confidence, ConfidenceCategory::high);
    }
    // Reading from the left column goes on to the right one.
    EXPECT_EQ(success(Engine::read(twoColumns(), {170, 45})).blocks.size(), 2U);
}

TEST(ReadingOrderEngine, PointerBetweenColumns) {
    // Left lines end at 262 and 238; right lines start at 300.
    std::vector<OCRLine> lines{ocrLine(u"Left column of text here", 100, 40),
                               ocrLine(u"Right column of text", 300, 40)};
    // Lines end at 244 and start at 300: the middle of the gutter is 272.
    auto middle = Engine::read(lines, {272, 46});
    ASSERT_TRUE(std::holds_alternative<ReadingError>(middle));
    EXPECT_EQ(std::get<ReadingError>(middle).userMessage(),
              "Pointer is between columns \u2014 point closer to the text");
    // Nearer the right column's start: its text begins just after the pointer.
    EXPECT_EQ(success(Engine::read(lines, {290, 46})).blocks.front().text, u"Right column of text");
    EXPECT_EQ(success(Engine::read(lines, {310, 46})).blocks.front().text, u"Right column of text");
}

TEST(ReadingOrderEngine, ReadFailures) {
    auto nothing = Engine::read({}, {0, 0});
    ASSERT_TRUE(std::holds_alternative<ReadingError>(nothing));
    EXPECT_EQ(std::get<ReadingError>(nothing).kind(), ReadingError::Kind::ocrFoundNothing);
    auto unsure = Engine::read({ocrLine(u"faint", 0, 0, 12, 6, 0.1F)}, {0, 0});
    EXPECT_EQ(std::get<ReadingError>(unsure).kind(), ReadingError::Kind::ocrFoundNothing);
    auto far = Engine::read(twoColumns(), {2000, 2000});
    EXPECT_EQ(std::get<ReadingError>(far).kind(), ReadingError::Kind::noReadableTextNearCursor);
    auto nan = Engine::read(twoColumns(), {std::nan(""), 3});
    EXPECT_TRUE(std::holds_alternative<ReadingError>(nan));
}

TEST(ReadingOrderEngine, RemovesInterfaceText) {
    std::vector<OCRLine> lines{ocrLine(u"Window title", 10, 2), ocrLine(u"OK", 200, 300),
                               ocrLine(u"Body", 10, 100)};
    auto kept = Engine::removingInterfaceText(lines, {ScreenRect{195, 295, 30, 20}}, 24.0);
    ASSERT_EQ(kept.size(), 1U);
    EXPECT_EQ(kept[0].text, u"Body");
    EXPECT_EQ(Engine::removingInterfaceText(lines, {}, std::nullopt).size(), 3U);
}

} // namespace
} // namespace lectorbell

namespace lectorbell {
namespace {

TEST(ReadingOrderEngine, ConfidenceFollowsTheLinesRead) {
    struct Case {
        float confidence;
        ConfidenceCategory expected;
    };
    const Case cases[] = {{0.97F, ConfidenceCategory::high},
                          {0.85F, ConfidenceCategory::high},
                          {0.7F, ConfidenceCategory::medium},
                          {0.45F, ConfidenceCategory::low}};
    for (const Case& c : cases) {
        std::vector<OCRLine> lines{test::ocrLine(u"Only this line.", 10, 10, 12, 6, c.confidence)};
        auto outcome = ReadingOrderEngine::read(lines, {20, 15});
        ASSERT_TRUE(std::holds_alternative<OCRReadingResult>(outcome));
        EXPECT_EQ(std::get<OCRReadingResult>(outcome).confidence, c.expected) << c.confidence;
    }
}

TEST(ReadingOrderEngine, ReadAllStartsAtTheMainText) {
    auto outcome = ReadingOrderEngine::readAll(sidebarPage());
    ASSERT_TRUE(std::holds_alternative<OCRReadingResult>(outcome));
    const auto& result = std::get<OCRReadingResult>(outcome);
    EXPECT_EQ(result.precision, AnchorPrecision::element);
    ASSERT_EQ(result.blocks.size(), 1U);
    EXPECT_EQ(result.blocks[0].role, BlockRole::body);
    EXPECT_EQ(std::get<ReadingError>(ReadingOrderEngine::readAll({})).kind(),
              ReadingError::Kind::ocrFoundNothing);
}

} // namespace
} // namespace lectorbell
