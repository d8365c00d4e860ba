#include "lectorbell/TextAlignment.hpp"

#include <gtest/gtest.h>

namespace {

namespace TextAlignment = lectorbell::TextAlignment;

TEST(TextAlignmentOffset, FindsAUniqueRun) {
    struct Case {
        std::vector<std::u16string> words;
        std::u16string text;
        int minimumWords;
        std::optional<std::int64_t> expected;
    };
    const Case cases[] = {
        {{u"Hello,", u"World"}, u"Say hello world now", 2, 4},
        {{u"hello", u"world"}, u"hello world, and hello world", 2, std::nullopt},
        {{u"...", u"!"}, u"Say hello", 1, std::nullopt},
        {{}, u"Say hello", 1, std::nullopt},
        // Cut off by the end of the text: the two words that remain are enough.
        {{u"two", u"words", u"more"}, u"one two words", 2, 4},
        {{u"two", u"words", u"more"}, u"one two words", 3, std::nullopt},
        {{u"Don't", u"stop"}, u"We dont stop here", 2, 3},
        {{u"missing"}, u"Say hello", 1, std::nullopt},
        // Below 1 means 1.
        {{u"words"}, u"one two words", 0, 8},
        // Offsets are UTF-16: the emoji before takes two units.
        {{u"caf\u00E9"}, u"\U0001F600 CAF\u00C9 open", 1, 3},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(TextAlignment::offset(c.words, c.text, c.minimumWords), c.expected)
            << c.text.size();
    }
}

TEST(TextAlignmentNormalize, KeepsLettersMarksAndDigits) {
    EXPECT_EQ(TextAlignment::normalize(u"Don't!"), u"dont");
    EXPECT_EQ(TextAlignment::normalize(u"E\u0301t\u00C9-2"), u"e\u0301t\u00E92");
    EXPECT_EQ(TextAlignment::normalize(u"\u2014"), u"");
}

TEST(TextAlignmentTokenize, GivesNormalisedWordsWithOffsets) {
    using Token = TextAlignment::Token;
    EXPECT_EQ(TextAlignment::tokenize(u"Hi, there: 42 \u2014 ok."),
              (std::vector<Token>{{u"hi", 0}, {u"there", 4}, {u"42", 11}, {u"ok", 16}}));
    EXPECT_TRUE(TextAlignment::tokenize(u" .. \U0001F600 ").empty());
}

} // namespace
