#pragma once

#include "lectorbell/ListeningStats.hpp"
#include "platform/ObserverList.hpp"
#include "platform/SettingsStore.hpp"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lectorbell::coordinator {

// One finished reading: where and how much, never the text.
struct ListenEntry {
    Date date;
    std::string appName;
    std::int64_t words = 0;
    double seconds = 0;
    bool wasSelection = false;
    std::optional<std::string> bundleID;

    friend bool operator==(const ListenEntry&, const ListenEntry&) = default;
};

std::string encodeListeningStats(const ListeningStats& stats);
std::optional<ListeningStats> decodeListeningStats(std::string_view json);
std::string encodeListenEntries(const std::vector<ListenEntry>& entries);
std::optional<std::vector<ListenEntry>> decodeListenEntries(std::string_view json);

// The listening history and totals, kept in the settings store under "listeningStats" and
// "recentListening" ("History keeps the app, time and word count only. Never the text.").
class StatsStore {
public:
    static constexpr std::size_t mostEntries = 200;

    StatsStore(platform::SettingsStore& defaults, UserCalendar calendar);
    ~StatsStore();
    StatsStore(const StatsStore&) = delete;
    StatsStore& operator=(const StatsStore&) = delete;

    const ListeningStats& stats() const { return stats_; }
    // Newest first, at most 200.
    const std::vector<ListenEntry>& recent() const { return recent_; }
    const UserCalendar& calendar() const { return calendar_; }

    void record(std::int64_t words, double seconds, Date at);
    // Entries without a word are not kept.
    void addEntry(ListenEntry entry);
    // Words per minute over all listening, once more than 20 s were heard.
    std::optional<std::int64_t> averageWPM() const;

    int observe(std::function<void()> observer) { return observers_.add(std::move(observer)); }
    void unobserve(int id) { observers_.remove(id); }

private:
    void load();

    platform::SettingsStore& store_;
    UserCalendar calendar_;
    ListeningStats stats_;
    std::vector<ListenEntry> recent_;
    int storeObserver_ = 0;
    bool writing_ = false;
    platform::ObserverList<> observers_;
};

} // namespace lectorbell::coordinator
