#include "lectorbell/ListeningStats.hpp"

#include "lectorbell/Fatal.hpp"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <unicode/gregocal.h>
#include <unicode/timezone.h>
#include <unicode/uchar.h>
#include <unicode/utf16.h>

namespace lectorbell {

namespace {

UDate toUDate(Date date) {
    return static_cast<UDate>(
        std::chrono::duration_cast<std::chrono::milliseconds>(date.time_since_epoch()).count());
}

Date fromUDate(UDate udate) {
    return Date{std::chrono::duration_cast<Date::duration>(
        std::chrono::duration<double, std::milli>(udate))};
}

// A Gregorian calendar in the zone, set to the date. ICU calendars are not thread-safe, so
// each call makes its own.
std::unique_ptr<icu::Calendar> calendarAt(const std::string& zoneId, Date date) {
    UErrorCode status = U_ZERO_ERROR;
    auto zone = std::unique_ptr<icu::TimeZone>(
        icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(zoneId)));
    auto calendar = std::make_unique<icu::GregorianCalendar>(zone.release(), status);
    if (U_FAILURE(status)) {
        fatalError("ICU Gregorian calendar unavailable");
    }
    calendar->setTime(toUDate(date), status);
    return calendar;
}

int field(const icu::Calendar& calendar, UCalendarDateFields which) {
    UErrorCode status = U_ZERO_ERROR;
    int value = calendar.get(which, status);
    return U_SUCCESS(status) ? value : 0;
}

Date timeOf(const icu::Calendar& calendar) {
    UErrorCode status = U_ZERO_ERROR;
    UDate udate = calendar.getTime(status);
    return fromUDate(udate);
}

bool isWhitespace(UChar32 c) {
    return u_isUWhiteSpace(c) != 0;
}

bool isLetterOrNumber(UChar32 c) {
    return (U_GET_GC_MASK(c) & (U_GC_L_MASK | U_GC_N_MASK)) != 0;
}

} // namespace

UserCalendar::UserCalendar(std::string_view timeZoneId)
    : timeZoneId_(timeZoneId) {
    // ICU answers an unknown id with its "Etc/Unknown" zone, which behaves as UTC.
}

UserCalendar UserCalendar::current() {
    std::unique_ptr<icu::TimeZone> zone{icu::TimeZone::createDefault()};
    icu::UnicodeString id;
    zone->getID(id);
    std::string utf8;
    id.toUTF8String(utf8);
    return UserCalendar{utf8};
}

UserCalendar::Day UserCalendar::dayOf(Date date) const {
    auto calendar = calendarAt(timeZoneId_, date);
    return {field(*calendar, UCAL_YEAR), field(*calendar, UCAL_MONTH) + 1,
            field(*calendar, UCAL_DATE)};
}

Date UserCalendar::startOfDay(Date date) const {
    auto calendar = calendarAt(timeZoneId_, date);
    calendar->set(UCAL_HOUR_OF_DAY, 0);
    calendar->set(UCAL_MINUTE, 0);
    calendar->set(UCAL_SECOND, 0);
    calendar->set(UCAL_MILLISECOND, 0);
    return timeOf(*calendar);
}

Date UserCalendar::addingDays(Date date, int days) const {
    auto calendar = calendarAt(timeZoneId_, date);
    UErrorCode status = U_ZERO_ERROR;
    calendar->add(UCAL_DATE, days, status);
    return timeOf(*calendar);
}

std::int64_t ListeningStats::countWords(std::u16string_view text) {
    std::int64_t words = 0;
    bool inPiece = false;
    bool pieceCounts = false;
    std::size_t i = 0;
    while (i < text.size()) {
        UChar32 c = 0;
        U16_NEXT(text.data(), i, text.size(), c);
        if (isWhitespace(c)) {
            words += (inPiece && pieceCounts) ? 1 : 0;
            inPiece = false;
            pieceCounts = false;
            continue;
        }
        inPiece = true;
        pieceCounts = pieceCounts || isLetterOrNumber(c);
    }
    return words + ((inPiece && pieceCounts) ? 1 : 0);
}

std::string ListeningStats::dayKey(Date date, const UserCalendar& calendar) {
    UserCalendar::Day day = calendar.dayOf(date);
    char key[32];
    std::snprintf(key, sizeof key, "%04d-%02d-%02d", day.year, day.month, day.day);
    return key;
}

void ListeningStats::record(std::int64_t words, double seconds, Date at,
                            const UserCalendar& calendar) {
    if (words < 1 && !(seconds > 0)) {
        return;
    }
    std::int64_t addedWords = std::max<std::int64_t>(words, 0);
    totalWords += addedWords;
    totalSeconds += seconds > 0 ? seconds : 0;
    dailyWords[dayKey(at, calendar)] += addedWords;
    if (dailyWords.size() >= 401) {
        std::string oldestKept = dayKey(calendar.addingDays(at, -400), calendar);
        dailyWords.erase(dailyWords.begin(), dailyWords.lower_bound(oldestKept));
    }
}

std::int64_t ListeningStats::wordsOn(Date date, const UserCalendar& calendar) const {
    if (dailyWords.empty()) {
        return 0;
    }
    auto found = dailyWords.find(dayKey(date, calendar));
    return found == dailyWords.end() ? 0 : found->second;
}

std::vector<std::pair<Date, std::int64_t>>
ListeningStats::recentDays(std::int64_t count, Date today, const UserCalendar& calendar) const {
    if (count < 0) {
        fatalError("ListeningStats.recentDays asked for a negative number of days");
    }
    std::vector<std::pair<Date, std::int64_t>> days;
    if (count == 0) {
        return days;
    }
    Date start = calendar.startOfDay(today);
    days.reserve(static_cast<std::size_t>(std::min<std::int64_t>(count, 100'000)));
    for (std::int64_t offset = -(count - 1); offset <= 0; ++offset) {
        Date day =
            calendar.addingDays(start, static_cast<int>(std::max<std::int64_t>(offset, INT32_MIN)));
        days.emplace_back(day, wordsOn(day, calendar));
    }
    return days;
}

std::int64_t ListeningStats::currentStreak(Date today, const UserCalendar& calendar) const {
    Date day = today;
    if (wordsOn(day, calendar) < 1) {
        day = calendar.addingDays(today, -1);
        if (wordsOn(day, calendar) < 1) {
            return 0;
        }
    }
    std::int64_t streak = 0;
    // A streak can be no longer than the number of days on record.
    while (streak <= static_cast<std::int64_t>(dailyWords.size()) && wordsOn(day, calendar) > 0) {
        ++streak;
        day = calendar.addingDays(day, -1);
    }
    return streak;
}

} // namespace lectorbell
