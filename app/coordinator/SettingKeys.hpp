#pragma once

#include <span>
#include <string_view>

namespace lectorbell::coordinator {

// The keys of the settings store.
namespace SettingKey {
// Held by ReadingSettings, in its declaration order.
inline constexpr const char* voiceIdentifier = "voiceIdentifier";
inline constexpr const char* pace = "pace";
inline constexpr const char* readHotkey = "readHotkey";
inline constexpr const char* holdKey = "holdKey";
inline constexpr const char* pauseHotkey = "pauseHotkey";
inline constexpr const char* stopHotkey = "stopHotkey";
inline constexpr const char* exclusions = "exclusions";
inline constexpr const char* showPlayer = "showPlayerPanel";
inline constexpr const char* diagnosticsEnabled = "diagnosticsEnabled";
inline constexpr const char* elevenEnabled = "elevenEnabled";
inline constexpr const char* elevenVoiceID = "elevenVoiceID";
inline constexpr const char* elevenVoiceName = "elevenVoiceName";
inline constexpr const char* elevenModel = "elevenModel";
inline constexpr const char* instantStart = "instantStart";
inline constexpr const char* skipSymbols = "skipSymbols";
inline constexpr const char* saveHotkey = "saveHotkey";
inline constexpr const char* pronunciations = "pronunciations";
inline constexpr const char* sharedPronunciations = "sharedPronunciations";
inline constexpr const char* useSharedPronunciations = "useSharedPronunciations";
inline constexpr const char* sharePronunciations = "sharePronunciations";
inline constexpr const char* appVoices = "appVoices";
inline constexpr const char* aiHotkey = "aiHotkey";
// Read and written outside ReadingSettings.
inline constexpr const char* setupDone = "setupDone";
inline constexpr const char* startAtLoginChosen = "startAtLoginChosen";
inline constexpr const char* reRegisterLoginItem = "reRegisterLoginItem";
inline constexpr const char* migratedFromMurmurbench = "migratedFromMurmurbench";
inline constexpr const char* feedbackInstallID = "feedbackInstallID";
inline constexpr const char* sharedPronunciationsAt = "sharedPronunciationsAt";
inline constexpr const char* devRemoteTrigger = "devRemoteTrigger";
inline constexpr const char* devLogExcerpts = "devLogExcerpts";
inline constexpr const char* devLogElevenVoices = "devLogElevenVoices";
// The listening history (StatsStore).
inline constexpr const char* listeningStats = "listeningStats";
inline constexpr const char* recentListening = "recentListening";
} // namespace SettingKey

// How a key's value is stored and read back.
enum class SettingKind {
    // A string; absent means none.
    text,
    // The cloud voice model, a string with its own load rule.
    model,
    // The raw value of a pace preset.
    pace,
    flag,
    // A shortcut as JSON; `optionalHotkey` may be absent.
    hotkey,
    optionalHotkey,
    // A JSON array of strings.
    stringList,
    // A JSON array of pronunciation rules.
    pronunciationRules,
    // A JSON array of per-application voices.
    appVoiceRules,
    // A moment, as an ISO 8601 date in UTC.
    time,
};

struct SettingDescription {
    std::string_view key;
    SettingKind kind;
    // For flags, the value when absent.
    bool flagDefault = false;
};

// Every user setting, in order: the ReadingSettings properties, then the other keys.
std::span<const SettingDescription> settingDescriptions();
const SettingDescription* findSettingDescription(std::string_view key);

} // namespace lectorbell::coordinator
