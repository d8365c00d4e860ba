#include "platform/linux/atspi/CodePointText.hpp"

#include <gtest/gtest.h>

namespace lectorbell::platform::atspi {
namespace {

// AT-SPI counts code points; our text is UTF-16, where a character outside the Basic
// Multilingual Plane takes two units.
TEST(CodePointText, offsetsConvertBothWaysAroundSurrogatePairs) {
    struct Case {
        const char* name;
        const char* utf8;
        std::int64_t codePoints;
        // UTF-16 offset of each code point offset from 0 to the end.
        std::vector<std::int64_t> utf16OfCodePoint;
    };
    const Case cases[] = {
        {"empty", "", 0, {0}},
        {"plain text", "abc", 3, {0, 1, 2, 3}},
        {"text of the Basic Multilingual Plane only",
         "d\u00e9j\u00e0 \u4e2d\u6587",
         7,
         {0, 1, 2, 3, 4, 5, 6, 7}},
        {"an emoji between letters", "a\U0001F600b", 3, {0, 1, 3, 4}},
        {"a CJK extension B ideograph", "\u4e2d\U00020000\u6587", 3, {0, 1, 3, 4}},
        {"a family joined by zero width joiners",
         "\U0001F468\u200D\U0001F469\u200D\U0001F467",
         5,
         {0, 2, 3, 5, 6, 8}},
        {"two pairs in a row", "\U0001F600\U0001F601x", 3, {0, 2, 4, 5}},
        {"a flag of two regional indicators", "\U0001F1FA\U0001F1E6.", 3, {0, 2, 4, 5}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        CodePointText text{c.utf8};
        ASSERT_EQ(text.codePointCount(), c.codePoints);
        EXPECT_EQ(static_cast<std::int64_t>(text.utf16().size()), c.utf16OfCodePoint.back());
        for (std::int64_t cp = 0; cp <= c.codePoints; ++cp) {
            const std::int64_t unit = c.utf16OfCodePoint[static_cast<std::size_t>(cp)];
            EXPECT_EQ(text.utf16Offset(cp), unit) << "code point " << cp;
            EXPECT_EQ(text.codePointOffset(unit), cp) << "unit " << unit;
        }
    }
}

TEST(CodePointText, anOffsetInsideAPairOrOutsideTheTextIsClamped) {
    struct Case {
        const char* name;
        const char* utf8;
        std::int64_t codePoint;
        std::int64_t expectedUtf16;
        std::int64_t utf16;
        std::int64_t expectedCodePoint;
    };
    const Case cases[] = {
        // The low half of a pair belongs to the code point that the pair makes.
        {"inside an emoji", "a\U0001F600b", 1, 1, 2, 1},
        {"inside the last of a family", "\U0001F468\u200D\U0001F469\u200D\U0001F467", 4, 6, 7, 4},
        {"past the end", "a\U0001F600b", 9, 4, 9, 3},
        {"before the start", "a\U0001F600b", -3, 0, -1, 0},
        {"past the end of plain text", "abc", 4, 3, 40, 3},
        {"past the end of nothing", "", 1, 0, 1, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        CodePointText text{c.utf8};
        EXPECT_EQ(text.utf16Offset(c.codePoint), c.expectedUtf16);
        EXPECT_EQ(text.codePointOffset(c.utf16), c.expectedCodePoint);
    }
}

TEST(CodePointText, textIsKeptAsUtf16) {
    CodePointText text{"x\U0001F600"};
    EXPECT_EQ(text.utf16(), u"x\U0001F600");
}

} // namespace
} // namespace lectorbell::platform::atspi
