#include "coordinator/StatsStore.hpp"

#include "coordinator/IsoDate.hpp"
#include "coordinator/SettingKeys.hpp"

#include <cmath>
#include <nlohmann/json.hpp>

namespace lectorbell::coordinator {

namespace {

using Json = nlohmann::ordered_json;

std::string dump(const Json& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::optional<ListenEntry> decodeEntry(const Json& object) {
    if (!object.is_object()) {
        return std::nullopt;
    }
    auto date = object.find("date");
    auto appName = object.find("appName");
    auto words = object.find("words");
    auto seconds = object.find("seconds");
    auto wasSelection = object.find("wasSelection");
    auto bundleID = object.find("bundleID");
    if (date == object.end() || !date->is_string() || appName == object.end() ||
        !appName->is_string() || words == object.end() || !words->is_number_integer() ||
        seconds == object.end() || !seconds->is_number() || wasSelection == object.end() ||
        !wasSelection->is_boolean()) {
        return std::nullopt;
    }
    std::optional<Date> when = parseIsoDate(date->get_ref<const std::string&>());
    if (!when) {
        return std::nullopt;
    }
    ListenEntry entry{*when,
                      appName->get<std::string>(),
                      words->get<std::int64_t>(),
                      seconds->get<double>(),
                      wasSelection->get<bool>(),
                      std::nullopt};
    if (bundleID != object.end() && bundleID->is_string()) {
        entry.bundleID = bundleID->get<std::string>();
    }
    return entry;
}

} // namespace

std::string encodeListeningStats(const ListeningStats& stats) {
    Json daily = Json::object();
    for (const auto& [day, words] : stats.dailyWords) {
        daily[day] = words;
    }
    return dump(Json{{"totalWords", stats.totalWords},
                     {"totalSeconds", stats.totalSeconds},
                     {"dailyWords", daily}});
}

std::optional<ListeningStats> decodeListeningStats(std::string_view json) {
    Json parsed = Json::parse(json, nullptr, false);
    if (!parsed.is_object()) {
        return std::nullopt;
    }
    auto words = parsed.find("totalWords");
    auto seconds = parsed.find("totalSeconds");
    auto daily = parsed.find("dailyWords");
    if (words == parsed.end() || !words->is_number_integer() || seconds == parsed.end() ||
        !seconds->is_number() || daily == parsed.end() || !daily->is_object()) {
        return std::nullopt;
    }
    ListeningStats stats;
    stats.totalWords = words->get<std::int64_t>();
    stats.totalSeconds = seconds->get<double>();
    for (const auto& [day, count] : daily->items()) {
        if (!count.is_number_integer()) {
            return std::nullopt;
        }
        stats.dailyWords.emplace(day, count.get<std::int64_t>());
    }
    return stats;
}

std::string encodeListenEntries(const std::vector<ListenEntry>& entries) {
    Json array = Json::array();
    for (const ListenEntry& entry : entries) {
        Json object{{"date", isoDate(entry.date)},
                    {"appName", entry.appName},
                    {"words", entry.words},
                    {"seconds", entry.seconds},
                    {"wasSelection", entry.wasSelection}};
        if (entry.bundleID) {
            object["bundleID"] = *entry.bundleID;
        }
        array.push_back(std::move(object));
    }
    return dump(array);
}

std::optional<std::vector<ListenEntry>> decodeListenEntries(std::string_view json) {
    Json parsed = Json::parse(json, nullptr, false);
    if (!parsed.is_array()) {
        return std::nullopt;
    }
    std::vector<ListenEntry> entries;
    entries.reserve(parsed.size());
    for (const Json& element : parsed) {
        std::optional<ListenEntry> entry = decodeEntry(element);
        if (!entry) {
            return std::nullopt;
        }
        entries.push_back(std::move(*entry));
    }
    return entries;
}

StatsStore::StatsStore(platform::SettingsStore& defaults, UserCalendar calendar)
    : store_{defaults}
    , calendar_{std::move(calendar)} {
    load();
    storeObserver_ = store_.observe([this](const std::string& key) {
        if (!writing_ &&
            (key == SettingKey::listeningStats || key == SettingKey::recentListening)) {
            load();
            observers_.notify();
        }
    });
}

StatsStore::~StatsStore() {
    store_.unobserve(storeObserver_);
}

void StatsStore::load() {
    std::optional<std::string> stats = store_.stringValue(SettingKey::listeningStats);
    stats_ = stats ? decodeListeningStats(*stats).value_or(ListeningStats{}) : ListeningStats{};
    std::optional<std::string> recent = store_.stringValue(SettingKey::recentListening);
    recent_ = recent ? decodeListenEntries(*recent).value_or(std::vector<ListenEntry>{})
                     : std::vector<ListenEntry>{};
    if (recent_.size() > mostEntries) {
        recent_.resize(mostEntries);
    }
}

void StatsStore::record(std::int64_t words, double seconds, Date at) {
    ListeningStats before = stats_;
    stats_.record(words, seconds, at, calendar_);
    if (stats_ == before) {
        return;
    }
    writing_ = true;
    store_.setValue(SettingKey::listeningStats, encodeListeningStats(stats_));
    writing_ = false;
    observers_.notify();
}

void StatsStore::addEntry(ListenEntry entry) {
    if (entry.words < 1) {
        return;
    }
    recent_.insert(recent_.begin(), std::move(entry));
    if (recent_.size() > mostEntries) {
        recent_.resize(mostEntries);
    }
    writing_ = true;
    store_.setValue(SettingKey::recentListening, encodeListenEntries(recent_));
    writing_ = false;
    observers_.notify();
}

std::optional<std::int64_t> StatsStore::averageWPM() const {
    if (!(stats_.totalSeconds > 20.0)) {
        return std::nullopt;
    }
    return std::llround(static_cast<double>(stats_.totalWords) / (stats_.totalSeconds / 60.0));
}

} // namespace lectorbell::coordinator
