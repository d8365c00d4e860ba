#include "lectorbell/Pronunciations.hpp"
#include "lectorbell/Utf8.hpp"

#include <atomic>
#include <gtest/gtest.h>
#include <memory>
#include <thread>
#include <unicode/regex.h>

namespace {

using lectorbell::PronunciationRule;
using lectorbell::Uuid;
namespace Pronunciations = lectorbell::Pronunciations;

PronunciationRule rule(std::u16string word, std::u16string sayAs) {
    return PronunciationRule{Uuid::random(), std::move(word), std::move(sayAs)};
}

TEST(PronunciationsApply, ReplacesWholeWordsLongestFirst) {
    struct Case {
        std::vector<PronunciationRule> rules;
        std::u16string text;
        std::u16string expected;
    };
    const Case cases[] = {
        {{rule(u"SQL", u"sequel")}, u"SQL, sql and (SQL)", u"sequel, sequel and (sequel)"},
        {{rule(u"SQL", u"sequel")}, u"MySQL SQL2 _SQL", u"MySQL SQL2 _sequel"},
        {{rule(u"York", u"B"), rule(u"New York", u"A")}, u"New York, York", u"A, B"},
        {{rule(u"K+", u"kay plus")}, u"K+, (K+) K+x xK+", u"kay plus, (kay plus) K+x xK+"},
        {{rule(u"a.b", u"dot")}, u"a.b axb", u"dot axb"},
        {{rule(u"cash", u"$1 \\0")}, u"cash", u"$1 \\0"},
        {{rule(u"same", u"first"), rule(u"same", u"second")}, u"same", u"first"},
        // Each rule sees the output of the ones before it.
        {{rule(u"New York", u"NY City"), rule(u"City", u"town")}, u"New York", u"NY town"},
        // Blank words or replacements are ignored; both sides are trimmed.
        {{rule(u"  ", u"x"), rule(u"word", u"\t "), rule(u" \tok ", u" fine ")},
         u"word ok",
         u"word fine"},
        {{rule(u"stra\u00DFe", u"street")}, u"STRASSE strasse", u"street street"},
        {{}, u"unchanged", u"unchanged"},
        {{rule(u"a", u"b")}, u"", u""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Pronunciations::apply(c.text, c.rules), c.expected) << lectorbell::toUtf8(c.text);
    }
}

// The rules as written: one ICU pattern per word, each replacing over the whole text in turn.
class LiteralRules {
public:
    // `ordered` must already be longest first, so no sorting is needed here.
    explicit LiteralRules(const std::vector<PronunciationRule>& ordered) {
        for (const auto& r : ordered) {
            icu::UnicodeString pattern{u"(?<![\\p{L}\\p{N}])"};
            for (char16_t c : r.word) {
                if (c < 128 && !std::isalnum(c)) {
                    pattern.append(u'\\');
                }
                pattern.append(c);
            }
            pattern.append(u"(?![\\p{L}\\p{N}])");
            icu::UnicodeString replacement;
            for (char16_t c : r.sayAs) {
                if (c == u'$' || c == u'\\') {
                    replacement.append(u'\\');
                }
                replacement.append(c);
            }
            UErrorCode status = U_ZERO_ERROR;
            patterns_.emplace_back(
                icu::RegexPattern::compile(pattern, UREGEX_CASE_INSENSITIVE, status));
            EXPECT_TRUE(U_SUCCESS(status));
            replacements_.push_back(replacement);
        }
    }

    std::u16string apply(const std::u16string& text) const {
        icu::UnicodeString current{text.data(), static_cast<int32_t>(text.size())};
        for (std::size_t i = 0; i < patterns_.size(); ++i) {
            UErrorCode status = U_ZERO_ERROR;
            std::unique_ptr<icu::RegexMatcher> matcher{patterns_[i]->matcher(current, status)};
            icu::UnicodeString out = matcher->replaceAll(replacements_[i], status);
            EXPECT_TRUE(U_SUCCESS(status));
            matcher.reset();
            current = out;
        }
        return std::u16string(current.getBuffer(), static_cast<std::size_t>(current.length()));
    }

private:
    std::vector<std::unique_ptr<icu::RegexPattern>> patterns_;
    std::vector<icu::UnicodeString> replacements_;
};

TEST(PronunciationsApply, MatchesThePatternsRunOneByOne) {
    // Already longest first (in characters), so the literal run needs no sorting.
    const std::vector<PronunciationRule> rules{
        rule(u"New York", u"NY City"), rule(u"stra\u00DFe", u"street"),
        rule(u"York", u"B"),           rule(u"City", u"town"),
        rule(u"SQL", u"sequel"),       rule(u"a.b", u"$1"),
        rule(u"K+", u"kay"),           rule(u"\u03B9", u"iota"),
        rule(u"\u00DF", u"eszett"),    rule(u"\U0001D400", u"bold"),
        rule(u"k", u"kilo"),           rule(u"1", u"one"),
    };
    const std::u16string pieces[] = {
        u"",       u" ",          u"new york", u"NEW\u00A0YORK", u"STRASSE", u"\u1E9E",
        u"\u0345", u"\u0399",     u"k+",       u"\u212A",        u"SQL",     u"sql2",
        u"a.b",    u"\U0001D400", u"\u00DF",   u"city",          u"1",       u"x",
        u"(",      u"\xD835",     u"-",
    };
    const LiteralRules literal{rules};
    for (const auto& a : pieces) {
        for (const auto& b : pieces) {
            for (const auto& c : pieces) {
                std::u16string text = a + b + c + u" " + b;
                ASSERT_EQ(Pronunciations::apply(text, rules), literal.apply(text))
                    << lectorbell::toUtf8(text);
            }
        }
    }
}

TEST(PronunciationsActiveList, IsReplacedWhole) {
    const std::vector<PronunciationRule> rules{rule(u"GIF", u"jif")};
    Pronunciations::setRules(rules);
    EXPECT_EQ(Pronunciations::rules(), rules);
    EXPECT_EQ(Pronunciations::apply(u"a gif"), u"a jif");
    // A preview leaves the active list alone.
    EXPECT_EQ(Pronunciations::apply(u"a gif", {rule(u"gif", u"gift")}), u"a gift");
    EXPECT_EQ(Pronunciations::apply(u"a gif"), u"a jif");
    Pronunciations::setRules({});
    EXPECT_EQ(Pronunciations::apply(u"a gif"), u"a gif");
}

TEST(PronunciationsActiveList, ReadersSeeTheOldOrTheNewListNeverAMix) {
    // Two lists that rewrite both words; a torn list would rewrite one word by each.
    const std::vector<PronunciationRule> first{rule(u"alpha", u"A1"), rule(u"beta", u"B1")};
    const std::vector<PronunciationRule> second{rule(u"alpha", u"A2"), rule(u"beta", u"B2")};
    Pronunciations::setRules(first);
    std::atomic<bool> done{false};
    std::thread writer{[&] {
        for (int i = 0; i < 2000; ++i) {
            Pronunciations::setRules(i % 2 == 0 ? second : first);
        }
        done = true;
    }};
    std::size_t mixed = 0;
    while (!done) {
        std::u16string spoken = Pronunciations::apply(u"alpha beta");
        mixed += spoken == u"A1 B1" || spoken == u"A2 B2" ? 0 : 1;
    }
    writer.join();
    EXPECT_EQ(mixed, 0u);
    Pronunciations::setRules({});
}

TEST(PronunciationRulesJson, RoundTripsAndRejectsBadInput) {
    const std::vector<PronunciationRule> rules{rule(u"SQL", u"sequel"),
                                               rule(u"na\u00EFve", u"\"x\"")};
    EXPECT_EQ(lectorbell::decodePronunciationRules(lectorbell::encodePronunciationRules(rules)),
              rules);
    auto decoded = lectorbell::decodePronunciationRules(
        R"([{"id":"0E9B6A3C-1111-4222-8333-444455556666","word":"a","sayAs":"b","extra":1}])");
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->at(0).id.string(), "0e9b6a3c-1111-4222-8333-444455556666");

    const char* bad[] = {
        "",
        "{}",
        "[1]",
        R"([{"word":"a","sayAs":"b"}])",
        R"([{"id":"not-a-uuid","word":"a","sayAs":"b"}])",
        R"([{"id":"0e9b6a3c-1111-4222-8333-444455556666","word":3,"sayAs":"b"}])",
    };
    for (const char* json : bad) {
        std::string why;
        EXPECT_FALSE(lectorbell::decodePronunciationRules(json, &why)) << json;
        EXPECT_FALSE(why.empty());
    }
}

} // namespace
