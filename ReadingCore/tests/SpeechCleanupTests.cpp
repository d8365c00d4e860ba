#include "lectorbell/SpeechCleanup.hpp"
#include "lectorbell/Utf8.hpp"

#include <gtest/gtest.h>
#include <string>

namespace {

namespace SpeechCleanup = lectorbell::SpeechCleanup;

struct Case {
    std::u16string input;
    std::u16string expected;
};
void PrintTo(const Case& c, std::ostream* os) {
    *os << '"' << lectorbell::toUtf8(c.input) << '"';
}

class CleanTest : public testing::TestWithParam<Case> {};

TEST_P(CleanTest, ShapesTextForSpeech) {
    EXPECT_EQ(SpeechCleanup::clean(GetParam().input), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, CleanTest,
    testing::Values(
        // Fast path: nothing needs attention, so even untidy spacing stays.
        Case{u"Hello world.", u"Hello world."}, Case{u"well , , done", u"well , , done"},
        Case{u"Wait!!!", u"Wait!!!"}, Case{u"", u""},
        // Links.
        Case{u"See https://www.host.test/a/b?c=1 now", u"See link to host.test now"},
        Case{u"HTTP://Example.org", u"link to Example.org"},
        // Markdown and wiki marks.
        Case{u"# Title", u"Title"}, Case{u"> quoted", u"quoted"}, Case{u"- item", u"item"},
        Case{u"-5", u"-5"}, Case{u"a **bold** and *it* word", u"a bold and it word"},
        Case{u"2*3*4", u"2*3*4"}, Case{u"__under__ line", u"under line"},
        Case{u"## Two\n* bullet\n>  quote", u"Two\nbullet\nquote"},
        Case{u"Paris[3] is[citation needed] big", u"Paris is big"},
        Case{u"a[3\u20135] b[1,4] c[B] d[Edit] e[note 2]", u"a b c d e"},
        Case{u"[1234] stays", u"[1234] stays"}, Case{u"snake_case_name", u"snake case name"},
        Case{u"_private", u"_private"}, Case{u"Wait... #1", u"Wait... #1"},
        Case{u"Wait!!! #1", u"Wait #1"}, Case{u"----\ntext", u"text"},
        // Symbols and emoji.
        Case{u"x^2 \u2265 4 \u2705", u"x 2 \u2265 4"}, Case{u"\u2705 ok", u"ok"},
        Case{u"fire \U0001F525\U0001F525\U0001F525 hot", u"fire hot"},
        Case{u"family \U0001F468\u200D\U0001F469\u200D\U0001F467 here", u"family here"},
        Case{u"keycap 1\uFE0F\u20E3 done", u"keycap done"}, Case{u"\u00A9 2024 \u2122", u"2024"},
        Case{u"a \u2022 b \u00B7 c", u"a b c"}, Case{u"$5 & 10% @home", u"$5 & 10% @home"},
        Case{u"a ~ b", u"a b"}, Case{u"1 + 1 = 2 \u00D7 1", u"1 + 1 = 2 \u00D7 1"},
        // Separators and spacing.
        Case{u"well , , done :", u"well, done:"}, Case{u"| Name | Age |", u"Name, Age"},
        Case{u"a | b", u"a b"}, Case{u"one\n\n\ntwo =", u"one two ="},
        Case{u"caf\u00E9 \u2013 na\u00EFve **bold**", u"caf\u00E9 \u2013 na\u00EFve bold"}));

TEST(SpeechCleanupKeep, FollowsTheCharacterRules) {
    struct KeepCase {
        std::u16string character;
        bool kept;
    };
    const KeepCase cases[] = {
        {u"a", true},
        {u"7", true},
        {u" ", true},
        {u"\n", true},
        {u"\r\n", true},
        {u"#", true},
        {u"*", true},
        {u"_", true},
        {u"$", true},
        {u"@", true},
        {u"&", true},
        {u"/", true},
        {u"+", true},
        {u"\u2212", true},
        {u"\u00B0", true},
        {u"~", false},
        {u"^", false},
        {u"|", false},
        {u"`", false},
        {u"\u00A9", false},
        {u"\u2122", false},
        {u"\u2022", false},
        {u"\U0001F600", false},
        {u"\u2705", false},
        {u"1\u20E3", false},
        {u"\u263A\uFE0F", false},
        {u"\u263A", false},
        {u"\u203C", true},
        {u"\u203C\u0301", false},
        {u"=\u0338", true},
        {u"+\u0301", false},
        {u"e\u0301", true},
        {u"\uE000", false},
        {u"\u200B", false},
        {u"\xD800", false},
        {u"\u0301", true},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(SpeechCleanup::keep(c.character), c.kept)
            << "U+" << std::hex << static_cast<int>(c.character[0]);
    }
}

class CleanupSwitchTest : public testing::Test {
protected:
    void TearDown() override { SpeechCleanup::enabled = true; }
};

TEST_F(CleanupSwitchTest, OffLeavesTextAlone) {
    SpeechCleanup::enabled = false;
    const std::u16string text = u"**Hi** \U0001F44B [1]";
    EXPECT_EQ(SpeechCleanup::clean(text), text);
    EXPECT_EQ(SpeechCleanup::removingReferenceMarkers(text), text);
}

TEST(SpeechCleanupReferenceMarkers, RemovesMarkersWithTheSpaceBefore) {
    EXPECT_EQ(SpeechCleanup::removingReferenceMarkers(u"word [3]."), u"word.");
    EXPECT_EQ(SpeechCleanup::removingReferenceMarkers(u"A[1][2] b [Citation Needed]"), u"A b");
    EXPECT_EQ(SpeechCleanup::removingReferenceMarkers(u"no markers"), u"no markers");
    EXPECT_EQ(SpeechCleanup::removingReferenceMarkers(u"[x y] stays"), u"[x y] stays");
}

} // namespace
