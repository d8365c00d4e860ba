#include "lectorbell/Utf8.hpp"

#include <gtest/gtest.h>

namespace lectorbell {
namespace {

TEST(Utf8, RoundTripsAndReplacesInvalidInput) {
    EXPECT_EQ(fromUtf8("caf\xC3\xA9 \xF0\x9F\x98\x80"), u"caf\u00E9 \U0001F600");
    EXPECT_EQ(toUtf8(u"caf\u00E9 \U0001F600"), "caf\xC3\xA9 \xF0\x9F\x98\x80");

    Utf8Decoded truncated = decodeUtf8("ab\xE2\x82");
    EXPECT_EQ(truncated.text, u"ab\uFFFD");
    EXPECT_EQ(truncated.replacements, 1U);
    Utf8Decoded stray = decodeUtf8("\xFF x \xC0\xAF");
    EXPECT_EQ(stray.replacements, 3U);
    EXPECT_EQ(decodeUtf8("").text, u"");

    const std::u16string unpaired{u'a', char16_t(0xDC00), u'b'};
    EXPECT_EQ(toUtf8(unpaired), "a\xEF\xBF\xBD"
                                "b");
}

} // namespace
} // namespace lectorbell
