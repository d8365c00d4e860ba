#include "coordinator/SettingKeys.hpp"

#include <array>

namespace lectorbell::coordinator {

namespace {

using K = SettingKind;

constexpr std::array<SettingDescription, 31> descriptions{{
    {SettingKey::voiceIdentifier, K::text},
    {SettingKey::pace, K::pace},
    {SettingKey::readHotkey, K::hotkey},
    {SettingKey::holdKey, K::hotkey},
    {SettingKey::pauseHotkey, K::hotkey},
    {SettingKey::stopHotkey, K::optionalHotkey},
    {SettingKey::exclusions, K::stringList},
    {SettingKey::showPlayer, K::flag, false},
    {SettingKey::diagnosticsEnabled, K::flag, false},
    {SettingKey::elevenEnabled, K::flag, false},
    {SettingKey::elevenVoiceID, K::text},
    {SettingKey::elevenVoiceName, K::text},
    {SettingKey::elevenModel, K::model},
    {SettingKey::instantStart, K::flag, true},
    {SettingKey::skipSymbols, K::flag, true},
    {SettingKey::saveHotkey, K::hotkey},
    {SettingKey::pronunciations, K::pronunciationRules},
    {SettingKey::sharedPronunciations, K::pronunciationRules},
    {SettingKey::useSharedPronunciations, K::flag, true},
    {SettingKey::sharePronunciations, K::flag, false},
    {SettingKey::appVoices, K::appVoiceRules},
    {SettingKey::aiHotkey, K::hotkey},
    {SettingKey::setupDone, K::flag, false},
    {SettingKey::startAtLoginChosen, K::flag, false},
    {SettingKey::reRegisterLoginItem, K::flag, false},
    {SettingKey::migratedFromMurmurbench, K::flag, false},
    {SettingKey::feedbackInstallID, K::text},
    {SettingKey::sharedPronunciationsAt, K::time},
    {SettingKey::devRemoteTrigger, K::flag, false},
    {SettingKey::devLogExcerpts, K::flag, false},
    {SettingKey::devLogElevenVoices, K::flag, false},
}};

} // namespace

std::span<const SettingDescription> settingDescriptions() {
    return descriptions;
}

const SettingDescription* findSettingDescription(std::string_view key) {
    for (const SettingDescription& description : descriptions) {
        if (description.key == key) {
            return &description;
        }
    }
    return nullptr;
}

} // namespace lectorbell::coordinator
