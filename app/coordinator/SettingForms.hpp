#pragma once

#include "coordinator/AppVoiceRule.hpp"
#include "coordinator/HotkeyCombo.hpp"
#include "lectorbell/ListeningStats.hpp"
#include "lectorbell/PacePreset.hpp"
#include "lectorbell/Pronunciations.hpp"
#include "platform/SettingsStore.hpp"

#include <optional>
#include <string>
#include <vector>

// Reading each kind of setting back from the store. A key that is absent, holds another type or
// does not decode gives the default: nothing is reported, and the stored value is left alone.
namespace lectorbell::coordinator::SettingForms {

using platform::SettingsStore;

inline constexpr const char* defaultElevenModel = "eleven_v4_turbo";
// The model that was the default before; a stored copy of it means the user never chose.
inline constexpr const char* formerDefaultElevenModel = "eleven_flash_v2_5";

bool loadFlag(const SettingsStore& store, const std::string& key, bool fallback);
std::optional<std::string> loadText(const SettingsStore& store, const std::string& key);
// "normal" when absent or not one of the six raw values.
PacePreset loadPace(const SettingsStore& store, const std::string& key);
// The stored model, except that absent or the former default reads as the current default.
std::string loadModel(const SettingsStore& store, const std::string& key);
// The shortcut's default when there is one (stopHotkey has none).
std::optional<HotkeyCombo> defaultHotkey(std::string_view key);
std::optional<HotkeyCombo> loadHotkey(const SettingsStore& store, const std::string& key);
std::vector<std::string> loadStringList(const SettingsStore& store, const std::string& key);
std::vector<PronunciationRule> loadRules(const SettingsStore& store, const std::string& key);
std::vector<AppVoiceRule> loadAppVoices(const SettingsStore& store, const std::string& key);
std::optional<Date> loadTime(const SettingsStore& store, const std::string& key);

std::string encodeStringList(const std::vector<std::string>& list);

} // namespace lectorbell::coordinator::SettingForms
