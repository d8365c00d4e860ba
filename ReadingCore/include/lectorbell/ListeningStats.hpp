#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace lectorbell {

using Date = std::chrono::system_clock::time_point;

// The user's calendar: Gregorian days in a time zone chosen by the caller, so day boundaries
// follow the user's clock (and tests can pin a zone).
class UserCalendar {
public:
    // An IANA zone id such as "Europe/Kyiv"; an unknown id falls back to UTC.
    explicit UserCalendar(std::string_view timeZoneId);
    // The process's default time zone.
    static UserCalendar current();

    struct Day {
        int year = 0;
        int month = 0;
        int day = 0;
    };
    Day dayOf(Date date) const;
    Date startOfDay(Date date) const;
    // The same wall-clock time `days` calendar days later (earlier when negative).
    Date addingDays(Date date, int days) const;
    const std::string& timeZoneId() const { return timeZoneId_; }

private:
    std::string timeZoneId_;
};

// How much the user has listened to, in total and per calendar day.
struct ListeningStats {
    std::int64_t totalWords = 0;
    double totalSeconds = 0;
    // Day key ("2026-03-07") to words heard that day.
    std::map<std::string, std::int64_t> dailyWords;

    // Whitespace-separated pieces that hold at least one letter or number.
    static std::int64_t countWords(std::u16string_view text);
    static std::string dayKey(Date date, const UserCalendar& calendar);

    void record(std::int64_t words, double seconds, Date at, const UserCalendar& calendar);
    std::int64_t wordsOn(Date date, const UserCalendar& calendar) const;
    // Oldest first, today last; a negative count is a fatal error.
    std::vector<std::pair<Date, std::int64_t>> recentDays(std::int64_t count, Date today,
                                                          const UserCalendar& calendar) const;
    std::int64_t currentStreak(Date today, const UserCalendar& calendar) const;

    friend bool operator==(const ListeningStats&, const ListeningStats&) = default;
};

} // namespace lectorbell
