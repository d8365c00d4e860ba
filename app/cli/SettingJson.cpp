#include "cli/SettingJson.hpp"

#include "coordinator/AppVoiceRule.hpp"
#include "coordinator/HotkeyCombo.hpp"
#include "coordinator/IsoDate.hpp"
#include "coordinator/SettingForms.hpp"
#include "lectorbell/Pronunciations.hpp"

namespace lectorbell::cli::SettingJson {

namespace {

using coordinator::SettingKind;
using Json = nlohmann::ordered_json;
namespace Forms = coordinator::SettingForms;

Json hotkeyJson(const std::optional<coordinator::HotkeyCombo>& combo) {
    return combo ? Json::parse(coordinator::encodeHotkey(*combo)) : Json{};
}

Json textJson(const std::optional<std::string>& text) {
    return text ? Json(*text) : Json{};
}

Parsed refused(std::string_view key, std::string_view form, const std::string& why = {}) {
    std::string problem = "settings set " + std::string{key} + ": expected " + std::string{form};
    if (!why.empty()) {
        problem += " (" + why + ")";
    }
    return {std::nullopt, problem};
}

} // namespace

Json effective(const coordinator::SettingDescription& setting,
               const platform::SettingsStore& store) {
    const std::string key{setting.key};
    switch (setting.kind) {
    case SettingKind::text:
        return textJson(Forms::loadText(store, key));
    case SettingKind::model:
        return Forms::loadModel(store, key);
    case SettingKind::pace:
        return std::string{rawValue(Forms::loadPace(store, key))};
    case SettingKind::flag:
        return Forms::loadFlag(store, key, setting.flagDefault);
    case SettingKind::hotkey:
    case SettingKind::optionalHotkey:
        return hotkeyJson(Forms::loadHotkey(store, key));
    case SettingKind::stringList:
        return Forms::loadStringList(store, key);
    case SettingKind::pronunciationRules:
        return Json::parse(encodePronunciationRules(Forms::loadRules(store, key)));
    case SettingKind::appVoiceRules:
        return Json::parse(coordinator::encodeAppVoiceRules(Forms::loadAppVoices(store, key)));
    case SettingKind::time: {
        std::optional<Date> when = Forms::loadTime(store, key);
        return when ? Json(coordinator::isoDate(*when)) : Json{};
    }
    }
    return Json{};
}

Json fallback(const coordinator::SettingDescription& setting) {
    switch (setting.kind) {
    case SettingKind::text:
    case SettingKind::time:
        return Json{};
    case SettingKind::model:
        return Forms::defaultElevenModel;
    case SettingKind::pace:
        return std::string{rawValue(PacePreset::normal)};
    case SettingKind::flag:
        return setting.flagDefault;
    case SettingKind::hotkey:
    case SettingKind::optionalHotkey:
        return hotkeyJson(Forms::defaultHotkey(setting.key));
    case SettingKind::stringList:
    case SettingKind::pronunciationRules:
    case SettingKind::appVoiceRules:
        return Json::array();
    }
    return Json{};
}

Parsed parse(const coordinator::SettingDescription& setting, std::string_view input) {
    const std::string_view key = setting.key;
    std::string why;
    switch (setting.kind) {
    case SettingKind::text:
    case SettingKind::model:
        return {std::string{input}, {}};
    case SettingKind::pace:
        if (!pacePresetFromRawValue(input)) {
            return refused(key, "one of slow, normal, fast, faster, veryFast, maximum");
        }
        return {std::string{input}, {}};
    case SettingKind::flag:
        if (input != "true" && input != "false") {
            return refused(key, "true or false");
        }
        return {input == "true", {}};
    case SettingKind::hotkey:
    case SettingKind::optionalHotkey:
        if (auto combo = coordinator::decodeHotkey(input, &why)) {
            return {coordinator::encodeHotkey(*combo), {}};
        }
        return refused(
            key, R"(a JSON object {"keyCode": number, "modifiers": number, "display": text})", why);
    case SettingKind::stringList: {
        Json parsed = Json::parse(input, nullptr, false);
        bool strings =
            parsed.is_array() &&
            std::all_of(parsed.begin(), parsed.end(), [](const Json& e) { return e.is_string(); });
        if (!strings) {
            return refused(key, "a JSON array of strings");
        }
        return {parsed.dump(-1, ' ', false, Json::error_handler_t::replace), {}};
    }
    case SettingKind::pronunciationRules:
        if (auto rules = decodePronunciationRules(input, &why)) {
            return {encodePronunciationRules(*rules), {}};
        }
        return refused(key, R"(a JSON array of {"id": UUID, "word": text, "sayAs": text})", why);
    case SettingKind::appVoiceRules:
        if (auto rules = coordinator::decodeAppVoiceRules(input, &why)) {
            return {coordinator::encodeAppVoiceRules(*rules), {}};
        }
        return refused(
            key,
            R"(a JSON array of {"bundleID": text, "appName": text, "voice": {"apple": {"_0": voice id}} or {"eleven": {}}})",
            why);
    case SettingKind::time:
        if (auto when = coordinator::parseIsoDate(input)) {
            return {coordinator::isoDate(*when), {}};
        }
        return refused(key, "a UTC time such as 2026-03-07T10:15:00Z");
    }
    return refused(key, "a value");
}

std::string shown(const Json& value) {
    if (value.is_null()) {
        return {};
    }
    if (value.is_string()) {
        return value.get<std::string>();
    }
    return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

} // namespace lectorbell::cli::SettingJson
