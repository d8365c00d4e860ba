#include "coordinator/ReadingSettings.hpp"

#include "coordinator/SettingForms.hpp"
#include "coordinator/SettingKeys.hpp"
#include "lectorbell/SpeechCleanup.hpp"

#include <array>

namespace lectorbell::coordinator {

namespace {

using P = ReadingSettings::Property;
namespace Forms = SettingForms;

constexpr std::array<P, 22> storedProperties{
    P::voiceIdentifier,
    P::pace,
    P::readHotkey,
    P::holdKey,
    P::pauseHotkey,
    P::stopHotkey,
    P::exclusions,
    P::showPlayer,
    P::diagnosticsEnabled,
    P::elevenEnabled,
    P::elevenVoiceID,
    P::elevenVoiceName,
    P::elevenModel,
    P::instantStart,
    P::skipSymbols,
    P::saveHotkey,
    P::pronunciations,
    P::sharedPronunciations,
    P::useSharedPronunciations,
    P::sharePronunciations,
    P::appVoices,
    P::aiHotkey,
};

template <typename T>
bool assign(T& field, T fresh) {
    if (field == fresh) {
        return false;
    }
    field = std::move(fresh);
    return true;
}

void writeOptional(platform::SettingsStore& store, const std::string& key,
                   const std::optional<std::string>& value) {
    if (value) {
        store.setValue(key, *value);
    } else {
        store.remove(key);
    }
}

} // namespace

const char* settingKey(ReadingSettings::Property property) {
    switch (property) {
    case P::voiceIdentifier:
        return SettingKey::voiceIdentifier;
    case P::pace:
        return SettingKey::pace;
    case P::readHotkey:
        return SettingKey::readHotkey;
    case P::holdKey:
        return SettingKey::holdKey;
    case P::pauseHotkey:
        return SettingKey::pauseHotkey;
    case P::stopHotkey:
        return SettingKey::stopHotkey;
    case P::exclusions:
        return SettingKey::exclusions;
    case P::showPlayer:
        return SettingKey::showPlayer;
    case P::diagnosticsEnabled:
        return SettingKey::diagnosticsEnabled;
    case P::elevenEnabled:
        return SettingKey::elevenEnabled;
    case P::elevenVoiceID:
        return SettingKey::elevenVoiceID;
    case P::elevenVoiceName:
        return SettingKey::elevenVoiceName;
    case P::elevenModel:
        return SettingKey::elevenModel;
    case P::instantStart:
        return SettingKey::instantStart;
    case P::skipSymbols:
        return SettingKey::skipSymbols;
    case P::saveHotkey:
        return SettingKey::saveHotkey;
    case P::pronunciations:
        return SettingKey::pronunciations;
    case P::sharedPronunciations:
        return SettingKey::sharedPronunciations;
    case P::useSharedPronunciations:
        return SettingKey::useSharedPronunciations;
    case P::sharePronunciations:
        return SettingKey::sharePronunciations;
    case P::appVoices:
        return SettingKey::appVoices;
    case P::aiHotkey:
        return SettingKey::aiHotkey;
    case P::measuredWPM:
        return nullptr;
    }
    return nullptr;
}

ReadingSettings::ReadingSettings(platform::SettingsStore& defaults)
    : store_{defaults} {
    for (P property : storedProperties) {
        load(property);
    }
    storeObserver_ = store_.observe([this](const std::string& key) { storeChanged(key); });
    SpeechCleanup::enabled = skipSymbols_;
    applyPronunciations();
}

ReadingSettings::~ReadingSettings() {
    store_.unobserve(storeObserver_);
}

bool ReadingSettings::load(Property property) {
    const std::string key = settingKey(property);
    switch (property) {
    case P::voiceIdentifier:
        return assign(voiceIdentifier_, Forms::loadText(store_, key));
    case P::pace:
        return assign(pace_, Forms::loadPace(store_, key));
    case P::readHotkey:
        return assign(readHotkey_, *Forms::loadHotkey(store_, key));
    case P::holdKey:
        return assign(holdKey_, *Forms::loadHotkey(store_, key));
    case P::pauseHotkey:
        return assign(pauseHotkey_, *Forms::loadHotkey(store_, key));
    case P::stopHotkey:
        return assign(stopHotkey_, Forms::loadHotkey(store_, key));
    case P::exclusions:
        return assign(exclusions_, Forms::loadStringList(store_, key));
    case P::showPlayer:
        return assign(showPlayer_, Forms::loadFlag(store_, key, false));
    case P::diagnosticsEnabled:
        return assign(diagnosticsEnabled_, Forms::loadFlag(store_, key, false));
    case P::elevenEnabled:
        return assign(elevenEnabled_, Forms::loadFlag(store_, key, false));
    case P::elevenVoiceID:
        return assign(elevenVoiceID_, Forms::loadText(store_, key));
    case P::elevenVoiceName:
        return assign(elevenVoiceName_, Forms::loadText(store_, key));
    case P::elevenModel:
        return assign(elevenModel_, Forms::loadModel(store_, key));
    case P::instantStart:
        return assign(instantStart_, Forms::loadFlag(store_, key, true));
    case P::skipSymbols:
        return assign(skipSymbols_, Forms::loadFlag(store_, key, true));
    case P::saveHotkey:
        return assign(saveHotkey_, *Forms::loadHotkey(store_, key));
    case P::pronunciations:
        return assign(pronunciations_, Forms::loadRules(store_, key));
    case P::sharedPronunciations:
        return assign(sharedPronunciations_, Forms::loadRules(store_, key));
    case P::useSharedPronunciations:
        return assign(useSharedPronunciations_, Forms::loadFlag(store_, key, true));
    case P::sharePronunciations:
        return assign(sharePronunciations_, Forms::loadFlag(store_, key, false));
    case P::appVoices:
        return assign(appVoices_, Forms::loadAppVoices(store_, key));
    case P::aiHotkey:
        return assign(aiHotkey_, *Forms::loadHotkey(store_, key));
    case P::measuredWPM:
        return false;
    }
    return false;
}

void ReadingSettings::write(Property property) {
    const char* key = settingKey(property);
    if (!key) {
        return;
    }
    writing_ = true;
    switch (property) {
    case P::voiceIdentifier:
        writeOptional(store_, key, voiceIdentifier_);
        break;
    case P::pace:
        store_.setValue(key, std::string{rawValue(pace_)});
        break;
    case P::readHotkey:
        store_.setValue(key, encodeHotkey(readHotkey_));
        break;
    case P::holdKey:
        store_.setValue(key, encodeHotkey(holdKey_));
        break;
    case P::pauseHotkey:
        store_.setValue(key, encodeHotkey(pauseHotkey_));
        break;
    case P::stopHotkey:
        writeOptional(store_, key,
                      stopHotkey_ ? std::optional{encodeHotkey(*stopHotkey_)} : std::nullopt);
        break;
    case P::exclusions:
        store_.setValue(key, Forms::encodeStringList(exclusions_));
        break;
    case P::showPlayer:
        store_.setValue(key, showPlayer_);
        break;
    case P::diagnosticsEnabled:
        store_.setValue(key, diagnosticsEnabled_);
        break;
    case P::elevenEnabled:
        store_.setValue(key, elevenEnabled_);
        break;
    case P::elevenVoiceID:
        writeOptional(store_, key, elevenVoiceID_);
        break;
    case P::elevenVoiceName:
        writeOptional(store_, key, elevenVoiceName_);
        break;
    case P::elevenModel:
        store_.setValue(key, elevenModel_);
        break;
    case P::instantStart:
        store_.setValue(key, instantStart_);
        break;
    case P::skipSymbols:
        store_.setValue(key, skipSymbols_);
        break;
    case P::saveHotkey:
        store_.setValue(key, encodeHotkey(saveHotkey_));
        break;
    case P::pronunciations:
        store_.setValue(key, encodePronunciationRules(pronunciations_));
        break;
    case P::sharedPronunciations:
        store_.setValue(key, encodePronunciationRules(sharedPronunciations_));
        break;
    case P::useSharedPronunciations:
        store_.setValue(key, useSharedPronunciations_);
        break;
    case P::sharePronunciations:
        store_.setValue(key, sharePronunciations_);
        break;
    case P::appVoices:
        store_.setValue(key, encodeAppVoiceRules(appVoices_));
        break;
    case P::aiHotkey:
        store_.setValue(key, encodeHotkey(aiHotkey_));
        break;
    case P::measuredWPM:
        break;
    }
    writing_ = false;
}

template <typename T>
void ReadingSettings::update(T& field, T value, Property property) {
    if (!assign(field, std::move(value))) {
        return;
    }
    write(property);
    changed(property);
}

void ReadingSettings::changed(Property property) {
    if (property == P::skipSymbols) {
        SpeechCleanup::enabled = skipSymbols_;
    }
    if (property == P::pronunciations || property == P::sharedPronunciations ||
        property == P::useSharedPronunciations) {
        applyPronunciations();
    }
    observers_.notify(property);
}

void ReadingSettings::storeChanged(const std::string& key) {
    if (writing_) {
        return;
    }
    for (P property : storedProperties) {
        if (key == settingKey(property)) {
            if (load(property)) {
                changed(property);
            }
            return;
        }
    }
}

void ReadingSettings::setVoiceIdentifier(std::optional<std::string> value) {
    update(voiceIdentifier_, std::move(value), P::voiceIdentifier);
}
void ReadingSettings::setPace(PacePreset value) {
    update(pace_, value, P::pace);
}
void ReadingSettings::setReadHotkey(HotkeyCombo value) {
    update(readHotkey_, std::move(value), P::readHotkey);
}
void ReadingSettings::setHoldKey(HotkeyCombo value) {
    update(holdKey_, std::move(value), P::holdKey);
}
void ReadingSettings::setPauseHotkey(HotkeyCombo value) {
    update(pauseHotkey_, std::move(value), P::pauseHotkey);
}
void ReadingSettings::setStopHotkey(std::optional<HotkeyCombo> value) {
    update(stopHotkey_, std::move(value), P::stopHotkey);
}
void ReadingSettings::setExclusions(std::vector<std::string> value) {
    update(exclusions_, std::move(value), P::exclusions);
}
void ReadingSettings::setShowPlayer(bool value) {
    update(showPlayer_, value, P::showPlayer);
}
void ReadingSettings::setDiagnosticsEnabled(bool value) {
    update(diagnosticsEnabled_, value, P::diagnosticsEnabled);
}
void ReadingSettings::setElevenEnabled(bool value) {
    update(elevenEnabled_, value, P::elevenEnabled);
}
void ReadingSettings::setElevenVoiceID(std::optional<std::string> value) {
    update(elevenVoiceID_, std::move(value), P::elevenVoiceID);
}
void ReadingSettings::setElevenVoiceName(std::optional<std::string> value) {
    update(elevenVoiceName_, std::move(value), P::elevenVoiceName);
}
void ReadingSettings::setElevenModel(std::string value) {
    update(elevenModel_, std::move(value), P::elevenModel);
}
void ReadingSettings::setInstantStart(bool value) {
    update(instantStart_, value, P::instantStart);
}
void ReadingSettings::setSkipSymbols(bool value) {
    update(skipSymbols_, value, P::skipSymbols);
}
void ReadingSettings::setSaveHotkey(HotkeyCombo value) {
    update(saveHotkey_, std::move(value), P::saveHotkey);
}
void ReadingSettings::setPronunciations(std::vector<PronunciationRule> value) {
    update(pronunciations_, std::move(value), P::pronunciations);
}
void ReadingSettings::setSharedPronunciations(std::vector<PronunciationRule> value) {
    update(sharedPronunciations_, std::move(value), P::sharedPronunciations);
}
void ReadingSettings::setUseSharedPronunciations(bool value) {
    update(useSharedPronunciations_, value, P::useSharedPronunciations);
}
void ReadingSettings::setSharePronunciations(bool value) {
    update(sharePronunciations_, value, P::sharePronunciations);
}
void ReadingSettings::setAppVoices(std::vector<AppVoiceRule> value) {
    update(appVoices_, std::move(value), P::appVoices);
}
void ReadingSettings::setAiHotkey(HotkeyCombo value) {
    update(aiHotkey_, std::move(value), P::aiHotkey);
}

void ReadingSettings::setMeasuredWPM(PacePreset preset, int wordsPerMinute) {
    auto it = measuredWPM_.find(preset);
    if (it != measuredWPM_.end() && it->second == wordsPerMinute) {
        return;
    }
    measuredWPM_[preset] = wordsPerMinute;
    changed(P::measuredWPM);
}

std::optional<AppVoiceRule::Voice>
ReadingSettings::appVoice(const std::optional<std::string>& bundleID) const {
    if (!bundleID) {
        return std::nullopt;
    }
    for (const AppVoiceRule& rule : appVoices_) {
        if (rule.bundleID == *bundleID) {
            return rule.voice;
        }
    }
    return std::nullopt;
}

std::vector<PronunciationRule> ReadingSettings::rulesInForce() const {
    std::vector<PronunciationRule> rules = pronunciations_;
    if (useSharedPronunciations_) {
        rules.insert(rules.end(), sharedPronunciations_.begin(), sharedPronunciations_.end());
    }
    return rules;
}

void ReadingSettings::applyPronunciations() const {
    Pronunciations::setRules(rulesInForce());
}

} // namespace lectorbell::coordinator
