#include "MemorySettingsStore.hpp"
#include "coordinator/StatsStore.hpp"

#include <gtest/gtest.h>

namespace lectorbell::coordinator {
namespace {

using namespace std::chrono;
using testing::MemorySettingsStore;

constexpr Date noon = sys_days{2026y / March / 7} + 12h;

ListenEntry entry(std::int64_t words, double seconds = 10, Date at = noon) {
    return {at, "Text Editor", words, seconds, false, std::string{"org.gnome.TextEditor"}};
}

TEST(StatsStore, KeepsTheNewest200EntriesWithWords) {
    MemorySettingsStore store;
    StatsStore history{store, UserCalendar{"UTC"}};
    history.addEntry(entry(0));
    EXPECT_TRUE(history.recent().empty());
    EXPECT_FALSE(store.contains("recentListening"));
    for (int i = 1; i <= 201; ++i) {
        history.addEntry(entry(i));
    }
    ASSERT_EQ(history.recent().size(), 200U);
    EXPECT_EQ(history.recent().front().words, 201);
    EXPECT_EQ(history.recent().back().words, 2);

    StatsStore reopened{store, UserCalendar{"UTC"}};
    EXPECT_EQ(reopened.recent(), history.recent());
}

TEST(StatsStore, AverageOnlyPastTwentySeconds) {
    struct Case {
        std::int64_t words;
        double seconds;
        std::optional<std::int64_t> average;
    };
    for (const Case& c :
         {Case{100, 20.0, std::nullopt}, Case{0, 0, std::nullopt}, Case{100, 20.5, 293},
          Case{150, 60.0, 150}, Case{1, 120.0, 1}, Case{1, 180.0, 0}}) {
        MemorySettingsStore store;
        StatsStore history{store, UserCalendar{"UTC"}};
        history.record(c.words, c.seconds, noon);
        EXPECT_EQ(history.averageWPM(), c.average) << c.words << " words, " << c.seconds << " s";
    }
}

TEST(StatsStore, TheDayIsTheUsersCalendarDay) {
    struct Case {
        const char* zone;
        Date at;
        const char* day;
    };
    const Date lateUtc = sys_days{2026y / March / 7} + 22h + 30min;
    for (const Case& c :
         {Case{"UTC", lateUtc, "2026-03-07"}, Case{"Europe/Kyiv", lateUtc, "2026-03-08"},
          Case{"Pacific/Kiritimati", sys_days{2026y / March / 7} + 10h + 30min, "2026-03-08"},
          Case{"America/St_Johns", sys_days{2026y / March / 8} + 2h + 59min, "2026-03-07"},
          Case{"Pacific/Pago_Pago", sys_days{2026y / March / 8} + 10h + 59min, "2026-03-07"}}) {
        MemorySettingsStore store;
        StatsStore history{store, UserCalendar{c.zone}};
        history.record(42, 12.5, c.at);
        EXPECT_EQ(history.stats().dailyWords, (std::map<std::string, std::int64_t>{{c.day, 42}}))
            << c.zone;
        StatsStore reopened{store, UserCalendar{c.zone}};
        EXPECT_EQ(reopened.stats(), history.stats()) << c.zone;
    }
}

TEST(StatsStore, HistoryThatDoesNotDecodeIsEmpty) {
    for (const char* stats : {"", "[]", R"({"totalWords":"many","totalSeconds":1,"dailyWords":{}})",
                              R"({"totalWords":1,"totalSeconds":1,"dailyWords":{"d":"x"}})"}) {
        MemorySettingsStore store;
        store.setValue("listeningStats", std::string{stats});
        store.setValue("recentListening", std::string{R"([{"date":"now"}])"});
        StatsStore history{store, UserCalendar{"UTC"}};
        EXPECT_EQ(history.stats(), ListeningStats{}) << stats;
        EXPECT_TRUE(history.recent().empty());
    }
}

TEST(StatsStore, NeverStoresText) {
    MemorySettingsStore store;
    StatsStore history{store, UserCalendar{"UTC"}};
    history.record(3, 2.0, noon);
    history.addEntry(entry(3));
    EXPECT_EQ(store.stringValue("recentListening"),
              R"([{"date":"2026-03-07T12:00:00.000Z","appName":"Text Editor","words":3,)"
              R"("seconds":10.0,"wasSelection":false,"bundleID":"org.gnome.TextEditor"}])");
    EXPECT_EQ(store.stringValue("listeningStats"),
              R"({"totalWords":3,"totalSeconds":2.0,"dailyWords":{"2026-03-07":3}})");
}

} // namespace
} // namespace lectorbell::coordinator
