#include "lectorbell/UTF16Text.hpp"

#include <gtest/gtest.h>
#include <limits>

namespace lectorbell {
namespace {

// "a", an emoji (2 units), "e" + combining acute (2 units), a flag (4 units), "b".
const std::u16string mixed = u"a\U0001F600e\u0301\U0001F1FA\U0001F1E6b";
//                              0 1-2       3 4     5-8               9; length 10

TEST(UTF16Text, SnapDownAndUp) {
    struct Case {
        std::int64_t i;
        std::int64_t down;
        std::int64_t up;
    };
    const Case cases[] = {
        {-5, 0, 0},   {0, 0, 0},
        {1, 1, 1},    {2, 1, 3},
        {3, 3, 3},    {4, 3, 5},
        {5, 5, 5},    {6, 5, 9},
        {7, 5, 9},    {8, 5, 9},
        {9, 9, 9},    {10, 10, 10},
        {11, 10, 10}, {std::numeric_limits<std::int64_t>::max(), 10, 10},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(UTF16Text::snapDown(c.i, mixed), c.down) << c.i;
        EXPECT_EQ(UTF16Text::snapUp(c.i, mixed), c.up) << c.i;
    }
    EXPECT_EQ(UTF16Text::snapDown(3, u""), 0);
    EXPECT_EQ(UTF16Text::snapUp(3, u""), 0);
}

TEST(UTF16Text, ZwjSequenceIsOneGrapheme) {
    const std::u16string family = u"x\U0001F468\u200D\U0001F469\u200D\U0001F467y"; // 1 + 8 + 1
    for (std::int64_t i = 2; i < 9; ++i) {
        EXPECT_EQ(UTF16Text::snapDown(i, family), 1) << i;
        EXPECT_EQ(UTF16Text::snapUp(i, family), 9) << i;
    }
}

TEST(UTF16Text, UnpairedSurrogatesAreCharactersOfTheirOwn) {
    const std::u16string broken{u'a', char16_t(0xD83D), u'b', char16_t(0xDE00), u'c'};
    for (std::int64_t i = 0; i <= 5; ++i) {
        EXPECT_EQ(UTF16Text::snapDown(i, broken), i);
        EXPECT_EQ(UTF16Text::snapUp(i, broken), i);
    }
}

TEST(UTF16Text, Clamp) {
    using R = UTF16Range;
    const std::int64_t big = std::numeric_limits<std::int64_t>::max() - 1;
    struct Case {
        R range;
        std::int64_t n;
        std::optional<R> expected;
    };
    const Case cases[] = {
        {{2, 3}, 10, R{2, 3}},       {{8, 5}, 10, R{8, 2}},
        {{12, 5}, 10, R{10, 0}},     {{0, 0}, 0, R{0, 0}},
        {{3, big}, 10, R{3, 7}}, // the sum overflows
        {{-1, 3}, 10, std::nullopt}, {{R::notFound, 0}, 10, std::nullopt},
        {{2, -1}, 10, std::nullopt}, {{2, 1}, -1, std::nullopt},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(UTF16Text::clamp(c.range, c.n), c.expected)
            << c.range.location << "+" << c.range.length;
    }
}

TEST(UTF16Text, SubstringWidensToWholeCharacters) {
    struct Case {
        UTF16Range range;
        std::optional<std::u16string> expected;
    };
    const Case cases[] = {
        {{2, 1}, u"\U0001F600"},           // starts inside a surrogate pair
        {{1, 1}, u"\U0001F600"},           // ends inside it
        {{4, 0}, u"e\u0301"},              // empty range inside a combining sequence
        {{6, 2}, u"\U0001F1FA\U0001F1E6"}, // inside a flag
        {{0, 100}, mixed},
        {{10, 0}, u""},
        {{3, -1}, std::nullopt},
        {{-2, 1}, std::nullopt},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(UTF16Text::substring(mixed, c.range), c.expected)
            << c.range.location << "+" << c.range.length;
    }
}

TEST(UTF16Text, IndexAndSuffix) {
    EXPECT_EQ(UTF16Text::index(mixed, 2), 1);
    EXPECT_EQ(UTF16Text::suffix(mixed, 7), u"\U0001F1FA\U0001F1E6b");
    EXPECT_EQ(UTF16Text::suffix(mixed, -3), mixed);
    EXPECT_EQ(UTF16Text::suffix(mixed, 99), u"");
}

} // namespace
} // namespace lectorbell
