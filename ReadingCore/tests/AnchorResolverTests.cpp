#include "lectorbell/AnchorResolver.hpp"

#include <gtest/gtest.h>

namespace lectorbell {
namespace {

using P = AnchorPrecision;

TEST(AnchorResolver, Resolve) {
    struct Case {
        std::u16string text;
        std::int64_t offset;
        P source;
        ResolvedAnchor expected;
    };
    const std::u16string two = u"First one here. Second sentence has words.";
    // "Second" starts at 16, "sentence" at 23, "has" at 32.
    const Case cases[] = {
        {u"", 5, P::character, {0, P::character}},
        {u"", 0, P::line, {0, P::line}},
        {two, 34, P::character, {32, P::word}},
        {two, 32, P::character, {32, P::word}},
        {two, 31, P::character, {32, P::word}}, // the space before a word belongs to it
        {two, 24, P::line, {23, P::line}},      // never finer than the source
        {two, 17, P::character, {16, P::sentence}},
        {two, 16, P::word, {16, P::sentence}},
        {two, 3, P::character, {0, P::sentence}},
        {two, -7, P::character, {0, P::sentence}},
        {two, 9999, P::character, {42, P::paragraph}}, // clamped to the end
        {two, 20, P::element, {16, P::element}},
        {u"One two.\nThree four five.", 20, P::character, {20, P::word}},
        {u"One two.\nThree four five.", 4, P::character, {4, P::word}},
        {u"One two.\r\nThree four.", 11, P::character, {10, P::sentence}},
        {u"One. Two three.", 4, P::character, {5, P::sentence}}, // the gap between sentences
        {u"Alone", 3, P::character, {0, P::sentence}},
        {u"...", 1, P::character, {0, P::sentence}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(AnchorResolver::resolve(c.text, c.offset, c.source), c.expected)
            << "offset " << c.offset;
    }
}

TEST(AnchorResolver, OffsetInsideAClusterMovesToItsStart) {
    // "Say 👍🏽 now please." : the emoji with its skin tone is four UTF-16 units at 4..8.
    const std::u16string text = u"Say hi \U0001F44D\U0001F3FD now please.";
    for (std::int64_t offset : {8, 9, 10}) {
        ResolvedAnchor anchor = AnchorResolver::resolve(text, offset, P::character);
        EXPECT_EQ(anchor.utf16Offset, 12) << offset; // the next word, "now"
    }
    const std::u16string combined = u"Go cafe\u0301 now.";
    EXPECT_EQ(AnchorResolver::resolve(combined, 7, P::character), (ResolvedAnchor{3, P::word}));
}

TEST(AnchorResolver, TrailingSpacesAfterTheLastSentenceGiveTheParagraphEnd) {
    const std::u16string text = u"It ends here.      \nNext.";
    ResolvedAnchor anchor = AnchorResolver::resolve(text, 16, P::character);
    EXPECT_EQ(anchor, (ResolvedAnchor{20, P::paragraph}));
}

TEST(AnchorResolver, WordRanges) {
    const std::u16string text = u"Well, it's 3.5 km\u2014fine!";
    std::vector<UTF16Range> all = AnchorResolver::wordRanges(text, {0, 99});
    std::vector<UTF16Range> expected{{0, 4}, {6, 4}, {11, 3}, {15, 2}, {18, 4}};
    EXPECT_EQ(all, expected);
    std::vector<UTF16Range> part = AnchorResolver::wordRanges(text, {6, 8});
    EXPECT_EQ(part, (std::vector<UTF16Range>{{6, 4}, {11, 3}}));
    EXPECT_TRUE(AnchorResolver::wordRanges(text, {-1, 3}).empty());
    EXPECT_TRUE(AnchorResolver::wordRanges(text, {UTF16Range::notFound, 3}).empty());
    EXPECT_TRUE(AnchorResolver::wordRanges(u"", {0, 0}).empty());
}

} // namespace
} // namespace lectorbell
