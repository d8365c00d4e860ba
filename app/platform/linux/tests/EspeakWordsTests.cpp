#include "lectorbell/UTF16Text.hpp"
#include "platform/linux/espeak/EspeakWords.hpp"

#include <gtest/gtest.h>

namespace lectorbell::platform::espeak {
namespace {

// The text of each spoken word, for readable expectations.
std::vector<std::u16string> wordTexts(std::u16string_view text,
                                      const std::vector<EspeakWordEvent>& events) {
    std::vector<std::u16string> out;
    for (const SpokenWord& word : spokenWords(text, events)) {
        out.emplace_back(text.substr(static_cast<std::size_t>(word.range.location),
                                     static_cast<std::size_t>(word.range.length)));
    }
    return out;
}

struct Case {
    const char* name;
    std::u16string text;
    std::vector<int> positions; // 1-based code points, as espeak-ng reports them
    std::vector<std::u16string> expected;
};

class SpokenWordsTest : public testing::TestWithParam<Case> {};

TEST_P(SpokenWordsTest, MapsEventStartsToWholeWords) {
    const Case& c = GetParam();
    std::vector<EspeakWordEvent> events;
    for (std::size_t i = 0; i < c.positions.size(); ++i) {
        events.push_back({c.positions[i], static_cast<std::int64_t>(i) * 100});
    }
    EXPECT_EQ(wordTexts(c.text, events), c.expected);
}

// Positions below are those espeak-ng 1.51 reports for these texts.
INSTANTIATE_TEST_SUITE_P(
    Cases, SpokenWordsTest,
    testing::Values(
        Case{"plain", u"one two three", {1, 5, 9}, {u"one", u"two", u"three"}},
        // The emoji is two UTF-16 units but one code point; espeak-ng also reports the space
        // after it.
        Case{"emoji",
             u"H\u00e9llo \U0001F600 world",
             {1, 7, 8, 9},
             {u"H\u00e9llo", u"\U0001F600", u"world"}},
        // Closing quotes and trailing punctuation are not part of the word; an event at an
        // opening quote moves to the word.
        Case{"quotes", u"say \u201cquoted\u201d, then", {1, 5, 15}, {u"say", u"quoted", u"then"}},
        // A number spoken as several words gives events inside it: one word.
        Case{"number", u"in 2026 we", {1, 4, 5, 5, 5, 9}, {u"in", u"2026", u"we"}},
        Case{"hyphen", u"well-known, caf\u00e9.", {1, 13}, {u"well-known", u"caf\u00e9"}},
        // Events past the end, before the start or going backwards are dropped.
        Case{"out of range", u"ab cd", {0, 1, 4, 1, 40}, {u"ab", u"cd"}},
        Case{"only punctuation", u"a \u2014 b", {1, 3, 5}, {u"a", u"\u2014", u"b"}},
        Case{"unpaired surrogate",
             std::u16string{u"x "} + char16_t{0xD800} + u" y",
             {1, 3, 5},
             {u"x", std::u16string{char16_t{0xD800}}, u"y"}}),
    [](const testing::TestParamInfo<Case>& info) {
        std::string name = info.param.name;
        for (char& ch : name) {
            ch = std::isalnum(static_cast<unsigned char>(ch)) ? ch : '_';
        }
        return name;
    });

TEST(SpokenWords, KeepsTheFrameOfEachWordsFirstEvent) {
    std::vector<SpokenWord> words = spokenWords(u"in 2026", {{1, 10}, {4, 300}, {5, 700}});
    ASSERT_EQ(words.size(), 2U);
    EXPECT_EQ(words[0], (SpokenWord{10, {0, 2}}));
    EXPECT_EQ(words[1], (SpokenWord{300, {3, 4}}));
}

} // namespace
} // namespace lectorbell::platform::espeak
