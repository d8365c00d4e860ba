// `lectorbell history [--json]`: listening totals, the average pace, words per day for the last
// 14 days, the current streak and the recent readings (app, time, words, seconds; never text).

#include "cli/Stores.hpp"
#include "cli/Verbs.hpp"
#include "coordinator/IsoDate.hpp"
#include "coordinator/StatsStore.hpp"

#include <QDateTime>
#include <cstdio>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

namespace lectorbell::cli {

namespace {

using Json = nlohmann::ordered_json;
constexpr int daysShown = 14;

std::string localTime(Date date) {
    auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(date.time_since_epoch());
    return QDateTime::fromMSecsSinceEpoch(ms.count())
        .toLocalTime()
        .toString(QStringLiteral("yyyy-MM-dd HH:mm"))
        .toStdString();
}

Json historyJson(const coordinator::StatsStore& history, Date now) {
    const ListeningStats& stats = history.stats();
    std::optional<std::int64_t> average = history.averageWPM();
    Json days = Json::array();
    for (const auto& [day, words] : stats.recentDays(daysShown, now, history.calendar())) {
        days.push_back(
            Json{{"day", ListeningStats::dayKey(day, history.calendar())}, {"words", words}});
    }
    Json recent = Json::array();
    for (const coordinator::ListenEntry& entry : history.recent()) {
        recent.push_back(Json{{"date", coordinator::isoDate(entry.date)},
                              {"appName", entry.appName},
                              {"bundleID", entry.bundleID ? Json(*entry.bundleID) : Json{}},
                              {"words", entry.words},
                              {"seconds", entry.seconds},
                              {"wasSelection", entry.wasSelection}});
    }
    return Json{{"totalWords", stats.totalWords},
                {"totalSeconds", stats.totalSeconds},
                {"averageWPM", average ? Json(*average) : Json{}},
                {"streak", stats.currentStreak(now, history.calendar())},
                {"days", days},
                {"recent", recent}};
}

void printHistory(const Json& history) {
    std::printf("Heard %lld words in %.0f seconds",
                static_cast<long long>(history["totalWords"].get<std::int64_t>()),
                history["totalSeconds"].get<double>());
    if (history["averageWPM"].is_null()) {
        std::printf("; average pace not known yet\n");
    } else {
        std::printf("; average %lld words per minute\n",
                    static_cast<long long>(history["averageWPM"].get<std::int64_t>()));
    }
    std::printf("Streak: %lld days\n\nWords per day:\n",
                static_cast<long long>(history["streak"].get<std::int64_t>()));
    for (const Json& day : history["days"]) {
        std::printf("  %s  %lld\n", day["day"].get<std::string>().c_str(),
                    static_cast<long long>(day["words"].get<std::int64_t>()));
    }
    std::printf("\nRecent readings:\n");
    if (history["recent"].empty()) {
        std::printf("  none yet\n");
    }
    std::fflush(stdout);
}

int showHistory(platform::Platform& platform, bool json) {
    Stores stores = makeStores(platform);
    coordinator::StatsStore history{*stores.settings, UserCalendar::current()};
    const Date now = std::chrono::system_clock::now();
    Json report = historyJson(history, now);
    if (json) {
        std::cout << report.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
        return 0;
    }
    printHistory(report);
    for (const coordinator::ListenEntry& entry : history.recent()) {
        std::printf("  %s  %s  %lld words  %.1f s%s\n", localTime(entry.date).c_str(),
                    entry.appName.c_str(), static_cast<long long>(entry.words), entry.seconds,
                    entry.wasSelection ? "  (highlight)" : "");
    }
    return 0;
}

} // namespace

void addHistoryVerb(CLI::App& app, VerbOutcome& outcome, platform::Platform& platform) {
    auto json = std::make_shared<bool>(false);
    CLI::App* verb = app.add_subcommand(
        "history", "Show listening totals, words per day and the recent readings (never text)");
    verb->add_flag("--json", *json, "Print the history as JSON");
    verb->callback(
        [json, &outcome, &platform] { outcome.exitStatus = showHistory(platform, *json); });
}

} // namespace lectorbell::cli
