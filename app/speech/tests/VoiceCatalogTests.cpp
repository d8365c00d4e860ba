#include "speech/VoiceCatalog.hpp"

#include <gtest/gtest.h>

namespace lectorbell::speech {
namespace {

using Voice = VoiceCatalog::Voice;

std::vector<std::string> idsOf(const std::vector<Voice>& voices) {
    std::vector<std::string> ids;
    for (const Voice& v : voices) {
        ids.push_back(v.id);
    }
    return ids;
}

TEST(VoiceCatalog, ScoresQualityThenNoveltyThenLanguageThenName) {
    VoiceCatalog catalog{{"en-GB"}};
    struct Case {
        Voice voice;
        VoiceScore expected;
    };
    const std::vector<Case> cases{
        {{"a", "Serena", "en-GB", "Premium"}, {0, 0, "Serena"}},
        {{"b", "Kathy", "en-GB", "Premium"}, {1, 0, "Kathy"}},
        {{"c", "Ava", "en-US", "Enhanced"}, {2, 1, "Ava"}},
        {{"com.x.eloquence.en-GB.Eddy", "Eddy", "en-gb", "Default"}, {5, 0, "Eddy"}},
        {{"e", "Odd", "en-GB", "Siri"}, {6, 0, "Odd"}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(catalog.score(c.voice), c.expected) << c.voice.id;
    }
}

TEST(VoiceCatalog, PremiumInAnotherLanguageBeatsEnhancedInTheUsersLanguage) {
    VoiceCatalog catalog{{"de-DE"}};
    std::vector<Voice> voices{{"de", "Anna", "de-DE", "Enhanced"},
                              {"en", "Zoe", "en-US", "Premium"}};
    EXPECT_EQ(catalog.bestNatural(voices)->id, "en");
}

TEST(VoiceCatalog, NoveltyVoiceNeverWinsOverAnOrdinaryVoiceOfTheSameQuality) {
    VoiceCatalog catalog{{"en-US"}};
    std::vector<Voice> voices{{"k", "Kathy", "en-US", "Default"},
                              {"z", "Zarvox", "fr-FR", "Default"}};
    EXPECT_EQ(catalog.bestNatural(voices)->id, "z");
}

TEST(VoiceCatalog, WithoutPreferredLanguagesAmericanEnglishWinsAmongEquals) {
    VoiceCatalog catalog{{}};
    EXPECT_EQ(catalog.firstPreferredLanguage(), "en-US");
    std::vector<Voice> voices{{"gb", "Alice", "en-GB", "Default"},
                              {"us", "Bob", "en-US", "Default"}};
    EXPECT_EQ(catalog.bestNatural(voices)->id, "us");
    EXPECT_FALSE(catalog.bestNatural({}).has_value());
}

TEST(VoiceCatalog, TiesAreBrokenByName) {
    VoiceCatalog catalog{{"en-US"}};
    std::vector<Voice> voices{{"2", "Moira", "en-IE", "Default"},
                              {"1", "Daniel", "en-GB", "Default"},
                              {"3", "Aaron", "en-US", "Default"}};
    EXPECT_EQ(idsOf(catalog.ranked(voices)), (std::vector<std::string>{"3", "1", "2"}));
}

TEST(VoiceCatalog, FeaturedKeepsScoreOrderAndAlwaysShowsTheCurrentVoice) {
    VoiceCatalog catalog{{"en-US"}};
    std::vector<Voice> voices{{"d", "D", "en-US", "Default"},
                              {"c", "C", "en-US", "Default"},
                              {"b", "B", "en-US", "Default"},
                              {"a", "A", "en-US", "Default"}};
    EXPECT_EQ(idsOf(catalog.featured(voices, 2, std::nullopt)),
              (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(idsOf(catalog.featured(voices, 2, "d")), (std::vector<std::string>{"a", "d"}));
    EXPECT_EQ(idsOf(catalog.featured(voices, 2, "b")), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(idsOf(catalog.featured(voices, 0, "d")), (std::vector<std::string>{}));
    EXPECT_EQ(catalog.featured(voices, 10, "zz").size(), 4U);
}

TEST(VoiceCatalog, NaturalMeansBetterThanDefaultQuality) {
    EXPECT_FALSE(VoiceCatalog::hasNatural({{"x", "X", "en-US", "Default"}}));
    EXPECT_TRUE(VoiceCatalog::hasNatural(
        {{"x", "X", "en-US", "Default"}, {"y", "Y", "en-US", "Enhanced"}}));
    EXPECT_FALSE(VoiceCatalog::hasNatural({}));
}

TEST(VoiceCatalog, LabelsAccents) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {"en-US", "American"},
        {"en-NZ", "New Zealand"},
        {"en-SC", "Scottish"},
        {"en-ie", "Irish"},
        {"fr-CA", "Canada"},
        {"pt-BR", "Brazil"},
        {"en-GB-x-rp", "United Kingdom"},
        {"es-419", "Latin America"},
        {"cmn-Latn-pinyin", "Latn"},
        {"fr", ""},
    };
    for (const auto& [tag, label] : cases) {
        EXPECT_EQ(VoiceCatalog::accent(tag), label) << tag;
    }
}

} // namespace
} // namespace lectorbell::speech
