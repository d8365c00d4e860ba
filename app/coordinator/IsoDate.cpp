#include "coordinator/IsoDate.hpp"

#include <cstdio>

namespace lectorbell::coordinator {

namespace {

using namespace std::chrono;

// Reads exactly `width` digits at `at`.
std::optional<int> digits(std::string_view text, std::size_t at, std::size_t width) {
    if (at + width > text.size()) {
        return std::nullopt;
    }
    int value = 0;
    for (std::size_t i = at; i < at + width; ++i) {
        if (text[i] < '0' || text[i] > '9') {
            return std::nullopt;
        }
        value = value * 10 + (text[i] - '0');
    }
    return value;
}

} // namespace

std::string isoDate(Date date) {
    auto ms = time_point_cast<milliseconds>(date);
    auto day = floor<days>(ms);
    year_month_day ymd{day};
    hh_mm_ss time{ms - day};
    char buffer[40];
    std::snprintf(buffer, sizeof buffer, "%04d-%02u-%02uT%02ld:%02ld:%02ld.%03ldZ",
                  static_cast<int>(ymd.year()), static_cast<unsigned>(ymd.month()),
                  static_cast<unsigned>(ymd.day()), static_cast<long>(time.hours().count()),
                  static_cast<long>(time.minutes().count()),
                  static_cast<long>(time.seconds().count()),
                  static_cast<long>(time.subseconds().count()));
    return buffer;
}

std::optional<Date> parseIsoDate(std::string_view text) {
    // YYYY-MM-DDTHH:MM:SS[.mmm]Z
    if (text.size() != 20 && text.size() != 24) {
        return std::nullopt;
    }
    auto y = digits(text, 0, 4);
    auto mo = digits(text, 5, 2);
    auto d = digits(text, 8, 2);
    auto h = digits(text, 11, 2);
    auto mi = digits(text, 14, 2);
    auto s = digits(text, 17, 2);
    if (!y || !mo || !d || !h || !mi || !s || text[4] != '-' || text[7] != '-' || text[10] != 'T' ||
        text[13] != ':' || text[16] != ':' || text.back() != 'Z') {
        return std::nullopt;
    }
    int millis = 0;
    if (text.size() == 24) {
        auto fraction = digits(text, 20, 3);
        if (text[19] != '.' || !fraction) {
            return std::nullopt;
        }
        millis = *fraction;
    }
    year_month_day ymd{year{*y}, month{static_cast<unsigned>(*mo)}, day{static_cast<unsigned>(*d)}};
    if (!ymd.ok() || *h > 23 || *mi > 59 || *s > 60) {
        return std::nullopt;
    }
    return time_point_cast<Date::duration>(sys_days{ymd} + hours{*h} + minutes{*mi} + seconds{*s} +
                                           milliseconds{millis});
}

} // namespace lectorbell::coordinator
