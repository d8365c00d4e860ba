#include "ListMarkers.hpp"
#include "lectorbell/SpeechCleanup.hpp"
#include "lectorbell/TextSegmenter.hpp"
#include "lectorbell/Utf8.hpp"

#include <gtest/gtest.h>

namespace lectorbell {
namespace {

using Strings = std::vector<std::u16string>;

TEST(TextSegmenter, Paragraphs) {
    struct Case {
        std::u16string text;
        Strings expected;
    };
    const Case cases[] = {
        {u"The results were signifi-\ncant.", {u"The results were significant."}},
        {u"a well-\nknown fact", {u"a well-known fact"}},
        {u"Chapter 1\nIntroduction", {u"Chapter 1", u"Introduction"}},
        {u"the end of\nthe line", {u"the end of the line"}},
        {u"It is the end.\nand then", {u"It is the end.", u"and then"}},
        {u"a line ending in 3-\n3 more", {u"a line ending in 3-", u"3 more"}},
        {u"word-\n(aside)", {u"word-", u"(aside)"}},
        {u"Options\na. first item\nb) second item",
         {u"Options", u"a. first item", u"b) second item"}},
        {u"the plan\na.m. starts\niv. fourth\nin the end",
         {u"the plan a.m. starts", u"iv. fourth in the end"}},
        {u"one\r\n\r\ntwo\u2029three\u2028Four", {u"one", u"two three", u"Four"}},
        {u"  \t padded \t\nline  ", {u"padded line"}},
        {u"\n\n \n", {}},
        {u"", {}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(TextSegmenter::paragraphs(c.text), c.expected);
    }
}

TEST(TextSegmenter, ListMarkerLength) {
    struct Case {
        std::u16string_view line;
        std::size_t length;
    };
    const Case cases[] = {
        {u"1. Buy milk", 3}, {u"12) x", 4},    {u"3.) x", 4},     {u"(4) x", 4},
        {u"a. first", 3},    {u"(c)  x", 5},   {u"iv. x", 4},     {u"II. Methods", 4},
        {u"\u2022 eggs", 2}, {u"1990. x", 0},  {u"3.5 kg", 0},    {u"a.m. start", 0},
        {u"I. Smith", 0},    {u"A. Smith", 0}, {u"e.g. this", 0}, {u"in. x", 0},
        {u"1.", 0},          {u"", 0},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(detail::listMarkerLength(c.line), c.length) << toUtf8(std::u16string{c.line});
    }
}

TEST(TextSegmenter, JoinWrappedLines) {
    struct Case {
        std::u16string a, b, joined;
    };
    const Case cases[] = {
        {u"segmen-", u"tation", u"segmentation"},
        {u"self-", u"aware", u"self-aware"},
        {u"the (Co-", u"operative)", u"the (Co-operative)"},
        {u"ends", u"next", u"ends next"},
        {u"x-", u"Capital", u"x- Capital"},
        {u"-", u"alone", u"- alone"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(TextSegmenter::joinWrappedLines(c.a, c.b), c.joined);
    }
}

TEST(TextSegmenter, EndsWithAbbreviation) {
    struct Case {
        std::u16string s;
        bool expected;
    };
    const Case cases[] = {
        {u"Mr.", true},
        {u"See fig.", true},
        {u"J.", true},
        {u"(K.", true},
        {u"the U.S.", true},
        {u"a Ph.D.", true},
        {u"e.g.", true},
        {u"home.", false},
        {u"done", false},
        {u"  .  ", false},
        {u"I said \u201Cetc.", true},
        {u"1.", false},
        {u"\u00C9.", true},
        {u"", false},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(TextSegmenter::endsWithAbbreviation(c.s), c.expected);
    }
}

TEST(TextSegmenter, SentenceRangesKeepTrailingSpaceInTheRange) {
    const std::u16string text = u"Mr. Smith went home. He slept.";
    const std::vector<UTF16Range> expected{{0, 21}, {21, 9}};
    EXPECT_EQ(TextSegmenter::sentenceRanges(text), expected);
    EXPECT_TRUE(TextSegmenter::sentenceRanges(u"").empty());
    EXPECT_TRUE(TextSegmenter::sentences(u"   \n ").empty());
}

std::u16string repeat(std::u16string_view piece, std::size_t times) {
    std::u16string out;
    for (std::size_t i = 0; i < times; ++i) {
        out += piece;
    }
    return out;
}

TEST(TextSegmenter, SplitLong) {
    // A comma at 20 is not past a third of the limit: the cut falls at the last space before 100.
    std::u16string early = u"Early one, " + repeat(u"word ", 58);
    Strings pieces = TextSegmenter::splitLong(early, 100);
    ASSERT_GT(pieces.size(), 1U);
    EXPECT_EQ(pieces[0].size(), 95U);
    EXPECT_EQ(pieces[0].back(), u'd');

    // A colon at 40 wins over a comma at 90: priority, not position.
    std::u16string marks = repeat(u"a", 40) + u": " + repeat(u"b", 47) + u", " + repeat(u"c", 60);
    pieces = TextSegmenter::splitLong(marks, 100);
    EXPECT_EQ(pieces[0], repeat(u"a", 40) + u":");

    // No space at all: cut at the grapheme boundary at or before 100.
    std::u16string run = repeat(u"x", 99) + u"\U0001F600" + repeat(u"y", 49);
    pieces = TextSegmenter::splitLong(run, 100);
    ASSERT_EQ(pieces.size(), 2U);
    EXPECT_EQ(pieces[0], repeat(u"x", 99));
    EXPECT_EQ(pieces[1], u"\U0001F600" + repeat(u"y", 49));

    EXPECT_EQ(TextSegmenter::splitLong(u"short", 100), Strings{u"short"});
    EXPECT_TRUE(TextSegmenter::splitLong(u"", 100).empty());
    // A limit below one grapheme still makes progress, one character at a time.
    EXPECT_EQ(TextSegmenter::splitLong(u"\U0001F600ab", 1), (Strings{u"\U0001F600", u"a", u"b"}));
    for (const std::u16string& piece :
         TextSegmenter::splitLong(repeat(u"lorem ipsum, ", 200), 37)) {
        EXPECT_LE(piece.size(), 37U);
    }
}

// A space that a prepended mark joins into one character is no place to cut: the rest must
// still get shorter.
TEST(TextSegmenter, SplitLongNeverCutsInsideACharacter) {
    const std::u16string text = u"\u0601 " + std::u16string(20, u'x') + u" tail";
    std::vector<std::u16string> pieces = TextSegmenter::splitLong(text, 8);
    std::u16string joined;
    for (const std::u16string& piece : pieces) {
        EXPECT_LE(piece.size(), 8U) << lectorbell::toUtf8(piece);
        joined += piece;
    }
    EXPECT_EQ(joined, u"\u0601" + std::u16string(20, u'x') + u"tail");
}

TEST(TextSegmenter, SpeechNormalizedCollapsesSpacesAndDropsBullets) {
    EXPECT_EQ(TextSegmenter::speechNormalized(u"  \u2022 \u2022 Item\u00ADone  "), u"Itemone");
    EXPECT_EQ(TextSegmenter::speechNormalized(u"a \n\t b\u200Bc\uFEFF"), u"a bc");
    EXPECT_EQ(TextSegmenter::speechNormalized(u" \u25AA "), u"");
}

TEST(TextSegmenter, SplitLeading) {
    const std::u16string text =
        u"Well, this is a long sentence that goes on, and on and on for a while.";
    const SpeechChunk chunk{text, TextSegmenter::speechNormalized(text), 3};
    std::vector<SpeechChunk> parts = TextSegmenter::splitLeading(chunk, 46, 12);
    ASSERT_EQ(parts.size(), 2U);
    EXPECT_EQ(parts[0].text, u"Well, this is a long sentence that goes on,");
    EXPECT_EQ(parts[1].text, u"and on and on for a while.");
    EXPECT_EQ(parts[1].blockIndex, 3);
    // The mark after "Well" ends before the minimum head; the next one ends past 40.
    EXPECT_EQ(TextSegmenter::splitLeading(chunk, 40, 12).size(), 1U);
    // A tail no longer than the minimum stays with the head.
    EXPECT_EQ(TextSegmenter::splitLeading(chunk, 46, 27).size(), 1U);
    const SpeechChunk shortChunk{u"Short, yes.", u"Short, yes.", 0};
    EXPECT_EQ(TextSegmenter::splitLeading(shortChunk, 40, 12),
              std::vector<SpeechChunk>{shortChunk});
}

TEST(TextSegmenter, ChunksCarryTheirBlockAndSkipUnspeakablePieces) {
    std::vector<ReadingBlock> blocks{
        {Uuid::random(), u"First block. Second sentence.", BlockRole::body, std::nullopt, 0},
        {Uuid::random(), u"\u2022 \u2022", BlockRole::listItem, std::nullopt, 1},
        {Uuid::random(), u"Third.", BlockRole::navigation, std::nullopt, 2},
    };
    std::vector<SpeechChunk> chunks = TextSegmenter::chunks(blocks, 320);
    ASSERT_EQ(chunks.size(), 3U);
    EXPECT_EQ(chunks[0].text, u"First block.");
    EXPECT_EQ(chunks[1].blockIndex, 0);
    EXPECT_EQ(chunks[2].blockIndex, 2);
}

// The chunker works through a long block in windows; the result must equal segmenting the whole
// (marker-free) text at once, whatever falls on a window edge.
TEST(TextSegmenter, WindowedChunkingMatchesWholeText) {
    std::u16string text;
    for (int i = 0; i < 3000; ++i) {
        text += (i % 7 == 0) ? u"\n[3] starts a line and wraps\n" : u"Some words here [12] and ";
        text += (i % 11 == 0) ? u"there.\n\n" : u"wrap-\nped text.\n";
    }
    std::vector<SpeechChunk> expected;
    for (const std::u16string& paragraph :
         TextSegmenter::paragraphs(SpeechCleanup::removingReferenceMarkers(text))) {
        for (const std::u16string& sentence : TextSegmenter::sentences(paragraph)) {
            for (const std::u16string& piece : TextSegmenter::splitLong(sentence, 320)) {
                std::u16string spoken = TextSegmenter::speechNormalized(piece);
                if (!spoken.empty()) {
                    expected.push_back({piece, spoken, 7});
                }
            }
        }
    }
    EXPECT_EQ(TextSegmenter::chunksForBlock(text, 7, 320), expected);
}

} // namespace
} // namespace lectorbell
