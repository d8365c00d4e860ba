#include "coordinator/PronunciationList.hpp"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace lectorbell::coordinator {
namespace {

namespace List = PronunciationList;

TEST(PronunciationList, WhyARuleIsRefused) {
    struct Case {
        std::u16string word;
        std::u16string sayAs;
        std::optional<std::string> why;
    };
    for (const Case& c :
         {Case{u"SQL", u"sequel", std::nullopt}, Case{u" \t", u"x", "the word is empty"},
          Case{u"x", u"  ", "what to say is empty"},
          Case{u"GIF", u"gif file", "what to say contains the word again"},
          Case{u"GIF", u"GIFs", std::nullopt}, Case{u"K+", u"K plus", std::nullopt},
          Case{u"a.b", u"(a.b)", "what to say contains the word again"},
          Case{std::u16string(101, u'w'), u"x", "the word is longer than 100 characters"},
          Case{u"x", std::u16string(501, u'y'), "what to say is longer than 500 characters"}}) {
        EXPECT_EQ(List::whyRefused({Uuid::random(), c.word, c.sayAs}), c.why);
    }
}

TEST(PronunciationList, PutReplacesTheSameWordIgnoringCase) {
    std::vector<PronunciationRule> list{{Uuid::random(), u"SQL", u"sequel"}};
    EXPECT_EQ(List::put(list, {Uuid::random(), u" sql ", u"squeal"}), List::Placement::replaced);
    EXPECT_EQ(List::put(list, {Uuid::random(), u"GIF", u"jif"}), List::Placement::added);
    ASSERT_EQ(list.size(), 2U);
    EXPECT_EQ(list[0].sayAs, u"squeal");
    EXPECT_EQ(List::remove(list, u"Gif"), 1U);
    EXPECT_EQ(List::remove(list, u"Gif"), 0U);
}

TEST(PronunciationList, ImportCountsAddedReplacedAndRefused) {
    std::vector<PronunciationRule> list{{Uuid::random(), u"SQL", u"sequel"}};
    auto report = List::import(list, R"([
        {"word": "sql", "sayAs": "S Q L"},
        {"word": "GIF", "sayAs": "jif", "id": "0e7c1b1e-4a3b-4c5d-8e9f-000000000001"},
        {"word": "nginx", "sayAs": "engine x nginx"},
        {"word": "", "sayAs": "nothing"},
        ["not", "an", "object"],
        {"word": "kubectl", "sayAs": "cube control", "id": "not a uuid"}
    ])");
    ASSERT_TRUE(report);
    EXPECT_EQ(report->added, 2U);
    EXPECT_EQ(report->replaced, 1U);
    ASSERT_EQ(report->refused.size(), 3U);
    EXPECT_EQ(report->refused[0].index, 3U);
    EXPECT_EQ(report->refused[0].reason, "what to say contains the word again");
    EXPECT_EQ(report->refused[1].index, 4U);
    EXPECT_EQ(report->refused[2].index, 5U);
    ASSERT_EQ(list.size(), 3U);
    EXPECT_EQ(list[0].sayAs, u"S Q L");
    EXPECT_EQ(list[1].id.string(), "0e7c1b1e-4a3b-4c5d-8e9f-000000000001");

    std::string whyNot;
    EXPECT_FALSE(List::import(list, "{\"word\":\"x\"}", &whyNot));
    EXPECT_EQ(whyNot, "not a JSON array");
    EXPECT_EQ(list.size(), 3U);
}

TEST(PronunciationList, AHugeImportStopsAtTheLimitQuickly) {
    nlohmann::json rules = nlohmann::json::array();
    for (int i = 0; i < 100000; ++i) {
        rules.push_back(
            {{"word", "word" + std::to_string(i)}, {"sayAs", "say " + std::to_string(i)}});
    }
    std::vector<PronunciationRule> list{{Uuid::random(), u"word7", u"seven"}};
    auto start = std::chrono::steady_clock::now();
    auto report = List::import(list, rules.dump());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds{10});
    ASSERT_TRUE(report);
    EXPECT_EQ(list.size(), List::mostRules);
    EXPECT_EQ(report->replaced, 1U);
    EXPECT_EQ(report->added, List::mostRules - 1);
    EXPECT_EQ(report->refusedAsFull, 100000 - List::mostRules);
    EXPECT_EQ(report->firstRefusedAsFull, List::mostRules + 1);
}

} // namespace
} // namespace lectorbell::coordinator
