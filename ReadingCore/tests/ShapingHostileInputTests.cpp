// Text from other applications can be anything: every shaping call returns some string, in
// bounded time, and a rule that gives up is logged by name and size only.

#include "GuardedRegex.hpp"
#include "lectorbell/CoreLog.hpp"
#include "lectorbell/NumberSpeech.hpp"
#include "lectorbell/Pronunciations.hpp"
#include "lectorbell/SpeechCleanup.hpp"
#include "lectorbell/TableReading.hpp"
#include "lectorbell/TextAlignment.hpp"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

using namespace lectorbell;

class CapturedLog {
public:
    CapturedLog() {
        setCoreLogSink([this](std::string_view category, std::string_view message) {
            lines.push_back(std::string{category} + ": " + std::string{message});
        });
    }
    ~CapturedLog() { setCoreLogSink({}); }
    CapturedLog(const CapturedLog&) = delete;
    CapturedLog& operator=(const CapturedLog&) = delete;

    std::vector<std::string> lines;
};

std::u16string repeated(std::u16string_view piece, std::size_t times) {
    std::u16string out;
    out.reserve(piece.size() * times);
    for (std::size_t i = 0; i < times; ++i) {
        out.append(piece);
    }
    return out;
}

std::u16string shapeAll(std::u16string_view text) {
    std::u16string out = SpeechCleanup::clean(text);
    out = NumberSpeech::normalize(out);
    return Pronunciations::apply(out, {PronunciationRule{Uuid::random(), u"a", u"b"}});
}

TEST(ShapingHostileInput, ReturnsSomeStringForAnyInput) {
    const std::u16string inputs[] = {
        u"\xD800",
        u"a\xDC00**b**\xD800 -5 (1) [1]",
        repeated(u"x", 1 << 20),
        repeated(u"**a", 100'000 / 3),
        repeated(u"\u0301", 50'000),
        repeated(u"\U0001F468\u200D", 30'000),
        repeated(u"| a ", 20'000),
        u"# " + repeated(u"_a", 50'000) + u" https://" + repeated(u"h", 10'000),
    };
    for (const auto& input : inputs) {
        std::u16string shaped = shapeAll(input);
        EXPECT_LE(shaped.size(), input.size() * 3 + 16);
        TextAlignment::offset({u"a", u"b"}, input, 1);
        TableReading::isNumeric(input);
    }
}

TEST(ShapingHostileInput, RunsTooLongForTheMatcherSkipARuleAndLogWithoutText) {
    struct Case {
        std::u16string text;
        std::u16string_view start;
        std::u16string_view end;
    };
    // Far longer runs than the backtrack stack holds for "\s{2,}" and "([^\w\s.])\1{2,}".
    const Case cases[] = {
        {u"secret *" + repeated(u" ", 600'000) + u"x", u"secret", u"x"},
        {u"secret " + repeated(u"!", 300'000) + u" #1", u"secret", u"#1"},
    };
    for (const auto& c : cases) {
        CapturedLog log;
        std::u16string shaped = SpeechCleanup::clean(c.text);
        EXPECT_TRUE(shaped.starts_with(c.start));
        EXPECT_TRUE(shaped.ends_with(c.end));
        ASSERT_FALSE(log.lines.empty());
        for (const auto& line : log.lines) {
            EXPECT_EQ(line.find("secret"), std::string::npos) << line;
            EXPECT_NE(line.find("UTF-16 units"), std::string::npos) << line;
        }
    }
}

TEST(GuardedRegex, TimeLimitSkipsTheRuleAndKeepsTheText) {
    CapturedLog log;
    detail::RegexRewrite catastrophic{
        detail::compileConstantPattern(u"(a+)+b", 0, "ReadingCore/Test"), icu::UnicodeString{u"x"},
        "catastrophic"};
    icu::UnicodeString text{repeated(u"a", 64).c_str()};
    const icu::UnicodeString before = text;
    auto started = std::chrono::steady_clock::now();
    EXPECT_FALSE(detail::rewriteAll(text, catastrophic, "test"));
    EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds{2});
    EXPECT_EQ(text, before);
    ASSERT_EQ(log.lines.size(), 1u);
    EXPECT_EQ(
        log.lines[0],
        "reading: test: rule catastrophic skipped (time limit) for a text of 64 UTF-16 units");
}

TEST(ShapingHostileInput, RuleWordsMadeOfMetacharactersMatchLiterally) {
    const std::u16string words[] = {u"\\", u"\\E", u"\\Q",  u"(", u"[a-z]", u".*",     u"$",
                                    u"^",  u"|",   u"a{2}", u"?", u"#",     u"\\p{L}", u"(?i)"};
    for (const auto& word : words) {
        std::vector<PronunciationRule> rules{PronunciationRule{Uuid::random(), word, u"hit"}};
        EXPECT_EQ(Pronunciations::apply(u"x " + word + u" y", rules), u"x hit y");
        EXPECT_EQ(Pronunciations::apply(u"aa plain", rules), u"aa plain");
    }
}

TEST(ShapingHostileInput, RulesThatFeedThemselvesCannotBlowUpTheText) {
    CapturedLog log;
    // Each rule finds the word again in the previous one's output: doubling, 5,000 times over.
    std::vector<PronunciationRule> rules(5000, PronunciationRule{Uuid{}, u"a", u"a a"});
    std::u16string spoken = Pronunciations::apply(u"say a", rules);
    EXPECT_LE(spoken.size(), 5u * 64 + 65536);
    EXPECT_TRUE(spoken.starts_with(u"say a a"));
    ASSERT_EQ(log.lines.size(), 1u);
    EXPECT_NE(log.lines[0].find("output too long"), std::string::npos);
}

TEST(GuardedRegexDeathTest, ABrokenConstantPatternStopsNamingOwnerAndLine) {
    // clang-format off
    EXPECT_DEATH(lectorbell::detail::compileConstantPattern(u"(", 0, "ReadingCore/Test"), "ReadingCore/Test:" + std::to_string(__LINE__) + ": regular expression does not compile");
    // clang-format on
}

} // namespace
