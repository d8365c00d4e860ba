#include "lectorbell/NumberSpeech.hpp"
#include "lectorbell/Utf8.hpp"

#include <gtest/gtest.h>
#include <string>

namespace {

using lectorbell::NumberSpeech::normalize;

struct Case {
    std::u16string input;
    std::u16string expected;
};
void PrintTo(const Case& c, std::ostream* os) {
    *os << '"' << lectorbell::toUtf8(c.input) << '"';
}

class NormalizeTest : public testing::TestWithParam<Case> {};

TEST_P(NormalizeTest, ReadsNumbersInWords) {
    EXPECT_EQ(normalize(GetParam().input), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, NormalizeTest,
    testing::Values(Case{u"It fell -5 degrees", u"It fell minus 5 degrees"}, Case{u"x-5", u"x-5"},
                    Case{u"\u22123 and \u20134", u"minus 3 and minus 4"}, Case{u"1.-5", u"1.-5"},
                    Case{u"pages 3\u20137", u"pages 3 to 7"},
                    Case{u"pages 3 \u2013 7", u"pages 3 to 7"},
                    Case{u"pages 3\u20147", u"pages 3 to 7"}, Case{u"pages 3-7", u"pages 3-7"},
                    Case{u"\u00B12", u"plus or minus 2"}, Case{u"\u00B1 2", u"plus or minus 2"},
                    Case{u"$5M and 3 bn and 10K", u"$5 million and 3 billion and 10 thousand"},
                    Case{u"4B", u"4 billion"}, Case{u"5KB", u"5KB"},
                    Case{u"5k and 5m", u"5k and 5m"},
                    Case{u"loss of (1,200)", u"loss of minus 1,200"},
                    Case{u"(1) first", u"minus 1 first"}, Case{u"f(2)", u"f(2)"},
                    // No number character: even "±" is left alone because no pattern runs.
                    Case{u"No digits here", u"No digits here"}, Case{u"\u00B1 x", u"\u00B1 x"},
                    // Other scripts' digits count as numbers for the check.
                    Case{u"\u0663 \u00B1", u"\u0663 plus or minus "}));

} // namespace
