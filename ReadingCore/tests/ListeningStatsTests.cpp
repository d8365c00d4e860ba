#include "lectorbell/ListeningStats.hpp"

#include <gtest/gtest.h>

namespace lectorbell {
namespace {

using namespace std::chrono;

// Kyiv changes between UTC+2 and UTC+3, so day boundaries are not UTC's.
const UserCalendar kyiv{"Europe/Kyiv"};

Date at(int y, unsigned m, unsigned d, int hour = 12) {
    // The wall-clock time in Kyiv, from UTC with the zone's offset for that date.
    Date utc = sys_days{year{y} / month{m} / day{d}} + hours{hour};
    bool summer = m > 3 && m < 11;
    return utc - hours{summer ? 3 : 2};
}

TEST(ListeningStats, CountWords) {
    struct Case {
        std::u16string text;
        std::int64_t words;
    };
    const Case cases[] = {
        {u"Hello, world \u2014 42 times!", 4}, {u"", 0}, {u"   \t\n ", 0}, {u"\u2022 - ! item", 1},
        {u"na\u00EFve\u00A0caf\u00E9", 2}, // no-break space separates
        {u"\u4F60\u597D \u0661\u0662", 2}, // Han letters, Arabic-Indic digits
    };
    for (const Case& c : cases) {
        EXPECT_EQ(ListeningStats::countWords(c.text), c.words);
    }
}

TEST(ListeningStats, DayKeysFollowTheCallersZone) {
    // 23:30 UTC on 6 March is already 7 March in Kyiv.
    Date lateUtc = sys_days{year{2026} / March / day{6}} + hours{23} + minutes{30};
    EXPECT_EQ(ListeningStats::dayKey(lateUtc, kyiv), "2026-03-07");
    EXPECT_EQ(ListeningStats::dayKey(lateUtc, UserCalendar{"UTC"}), "2026-03-06");
}

TEST(ListeningStats, Record) {
    ListeningStats stats;
    stats.record(0, 0, at(2026, 3, 7), kyiv);
    EXPECT_EQ(stats, ListeningStats{});

    stats.record(0, 3.5, at(2026, 3, 7), kyiv);
    EXPECT_EQ(stats.totalSeconds, 3.5);
    EXPECT_EQ(stats.dailyWords.at("2026-03-07"), 0);

    stats.record(-5, -2, at(2026, 3, 7), kyiv);
    stats.record(12, -1, at(2026, 3, 7, 23), kyiv);
    EXPECT_EQ(stats.totalWords, 12);
    EXPECT_EQ(stats.totalSeconds, 3.5);
    EXPECT_EQ(stats.wordsOn(at(2026, 3, 7, 1), kyiv), 12);
    EXPECT_EQ(stats.wordsOn(at(2026, 3, 8), kyiv), 0);
}

TEST(ListeningStats, KeepsAbout400Days) {
    ListeningStats stats;
    Date first = at(2025, 1, 1);
    for (int i = 0; i < 401; ++i) {
        stats.dailyWords[ListeningStats::dayKey(kyiv.addingDays(first, i), kyiv)] = 1;
    }
    Date next = kyiv.addingDays(first, 420);
    stats.record(3, 1, next, kyiv);
    EXPECT_EQ(stats.dailyWords.begin()->first,
              ListeningStats::dayKey(kyiv.addingDays(next, -400), kyiv));
    EXPECT_EQ(stats.dailyWords.size(), 401U - 20U + 1U);
}

TEST(ListeningStats, RecentDaysOldestFirst) {
    ListeningStats stats;
    stats.record(5, 1, at(2026, 3, 30), kyiv); // the day after the clocks went forward
    stats.record(7, 1, at(2026, 3, 25), kyiv);
    auto days = stats.recentDays(7, at(2026, 3, 31, 9), kyiv);
    ASSERT_EQ(days.size(), 7U);
    EXPECT_EQ(ListeningStats::dayKey(days.front().first, kyiv), "2026-03-25");
    EXPECT_EQ(days.front().second, 7);
    EXPECT_EQ(ListeningStats::dayKey(days.back().first, kyiv), "2026-03-31");
    EXPECT_EQ(days[5].second, 5);
    for (std::size_t i = 1; i < days.size(); ++i) {
        EXPECT_LT(days[i - 1].first, days[i].first);
    }
    EXPECT_TRUE(stats.recentDays(0, at(2026, 3, 31), kyiv).empty());
}

TEST(ListeningStatsDeathTest, NegativeRecentDaysIsFatal) {
    EXPECT_DEATH(ListeningStats{}.recentDays(-1, at(2026, 3, 31), kyiv), "negative");
}

TEST(ListeningStats, Streak) {
    struct Case {
        std::vector<int> daysAgoWithWords;
        std::int64_t streak;
    };
    const Case cases[] = {
        {{1, 2}, 2},       // none today: counting starts yesterday
        {{0, 1, 2, 4}, 3}, // a gap ends it
        {{2, 3}, 0},       // none today or yesterday
        {{0}, 1},          {{}, 0},
    };
    Date today = at(2026, 11, 21, 8);
    for (const Case& c : cases) {
        ListeningStats stats;
        for (int ago : c.daysAgoWithWords) {
            stats.record(10, 1, kyiv.addingDays(today, -ago), kyiv);
        }
        EXPECT_EQ(stats.currentStreak(today, kyiv), c.streak);
    }
}

} // namespace
} // namespace lectorbell
