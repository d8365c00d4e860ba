#include "coordinator/SettingForms.hpp"

#include "coordinator/IsoDate.hpp"
#include "coordinator/SettingKeys.hpp"

#include <nlohmann/json.hpp>

namespace lectorbell::coordinator::SettingForms {

bool loadFlag(const SettingsStore& store, const std::string& key, bool fallback) {
    return store.boolValue(key).value_or(fallback);
}

std::optional<std::string> loadText(const SettingsStore& store, const std::string& key) {
    return store.stringValue(key);
}

PacePreset loadPace(const SettingsStore& store, const std::string& key) {
    std::optional<std::string> raw = store.stringValue(key);
    std::optional<PacePreset> preset = raw ? pacePresetFromRawValue(*raw) : std::nullopt;
    return preset.value_or(PacePreset::normal);
}

std::string loadModel(const SettingsStore& store, const std::string& key) {
    std::optional<std::string> stored = store.stringValue(key);
    if (!stored || *stored == formerDefaultElevenModel) {
        return defaultElevenModel;
    }
    return *stored;
}

std::optional<HotkeyCombo> defaultHotkey(std::string_view key) {
    using namespace HotkeyModifier;
    if (key == SettingKey::readHotkey) {
        return hotkeyCombo(HotkeyKey::r, shift | command);
    }
    if (key == SettingKey::holdKey) {
        return hotkeyCombo(HotkeyKey::belowEsc, 0);
    }
    if (key == SettingKey::pauseHotkey) {
        return hotkeyCombo(HotkeyKey::r, option | shift | command);
    }
    if (key == SettingKey::saveHotkey) {
        return hotkeyCombo(HotkeyKey::s, control | option);
    }
    if (key == SettingKey::aiHotkey) {
        return hotkeyCombo(HotkeyKey::two, command);
    }
    return std::nullopt;
}

std::optional<HotkeyCombo> loadHotkey(const SettingsStore& store, const std::string& key) {
    std::optional<std::string> json = store.stringValue(key);
    std::optional<HotkeyCombo> combo = json ? decodeHotkey(*json) : std::nullopt;
    return combo ? combo : defaultHotkey(key);
}

std::vector<std::string> loadStringList(const SettingsStore& store, const std::string& key) {
    std::optional<std::string> json = store.stringValue(key);
    if (!json) {
        return {};
    }
    nlohmann::json parsed = nlohmann::json::parse(*json, nullptr, false);
    if (!parsed.is_array()) {
        return {};
    }
    std::vector<std::string> list;
    for (const nlohmann::json& element : parsed) {
        if (!element.is_string()) {
            return {};
        }
        list.push_back(element.get<std::string>());
    }
    return list;
}

std::vector<PronunciationRule> loadRules(const SettingsStore& store, const std::string& key) {
    std::optional<std::string> json = store.stringValue(key);
    if (!json) {
        return {};
    }
    return decodePronunciationRules(*json).value_or(std::vector<PronunciationRule>{});
}

std::vector<AppVoiceRule> loadAppVoices(const SettingsStore& store, const std::string& key) {
    std::optional<std::string> json = store.stringValue(key);
    if (!json) {
        return {};
    }
    return decodeAppVoiceRules(*json).value_or(std::vector<AppVoiceRule>{});
}

std::optional<Date> loadTime(const SettingsStore& store, const std::string& key) {
    std::optional<std::string> text = store.stringValue(key);
    return text ? parseIsoDate(*text) : std::nullopt;
}

std::string encodeStringList(const std::vector<std::string>& list) {
    return nlohmann::json(list).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

} // namespace lectorbell::coordinator::SettingForms
