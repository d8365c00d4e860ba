#pragma once

#include "coordinator/AppVoiceRule.hpp"
#include "coordinator/HotkeyCombo.hpp"
#include "lectorbell/PacePreset.hpp"
#include "lectorbell/Pronunciations.hpp"
#include "platform/ObserverList.hpp"
#include "platform/SettingsStore.hpp"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace lectorbell::coordinator {

// Every user choice of the application. Each property is written to the settings store the
// moment it changes, and observers are told of every change: made here, or made to the store
// by another process (the command line, a second copy of the application). It also owns the
// core's process-wide switches: the pronunciation rules in force and the symbol cleanup.
// Main thread only.
class ReadingSettings {
public:
    // In declaration order; `measuredWPM` is held for the session only.
    enum class Property {
        voiceIdentifier,
        pace,
        readHotkey,
        holdKey,
        pauseHotkey,
        stopHotkey,
        exclusions,
        showPlayer,
        diagnosticsEnabled,
        elevenEnabled,
        elevenVoiceID,
        elevenVoiceName,
        elevenModel,
        instantStart,
        skipSymbols,
        saveHotkey,
        pronunciations,
        sharedPronunciations,
        useSharedPronunciations,
        sharePronunciations,
        appVoices,
        aiHotkey,
        measuredWPM,
    };
    using Observer = std::function<void(Property)>;

    // Loads every property, then applies the pronunciations and the symbol switch.
    explicit ReadingSettings(platform::SettingsStore& defaults);
    ~ReadingSettings();
    ReadingSettings(const ReadingSettings&) = delete;
    ReadingSettings& operator=(const ReadingSettings&) = delete;

    const std::optional<std::string>& voiceIdentifier() const { return voiceIdentifier_; }
    void setVoiceIdentifier(std::optional<std::string> value);
    PacePreset pace() const { return pace_; }
    void setPace(PacePreset value);
    const HotkeyCombo& readHotkey() const { return readHotkey_; }
    void setReadHotkey(HotkeyCombo value);
    const HotkeyCombo& holdKey() const { return holdKey_; }
    void setHoldKey(HotkeyCombo value);
    const HotkeyCombo& pauseHotkey() const { return pauseHotkey_; }
    void setPauseHotkey(HotkeyCombo value);
    const std::optional<HotkeyCombo>& stopHotkey() const { return stopHotkey_; }
    void setStopHotkey(std::optional<HotkeyCombo> value);
    const std::vector<std::string>& exclusions() const { return exclusions_; }
    void setExclusions(std::vector<std::string> value);
    bool showPlayer() const { return showPlayer_; }
    void setShowPlayer(bool value);
    bool diagnosticsEnabled() const { return diagnosticsEnabled_; }
    void setDiagnosticsEnabled(bool value);
    bool elevenEnabled() const { return elevenEnabled_; }
    void setElevenEnabled(bool value);
    const std::optional<std::string>& elevenVoiceID() const { return elevenVoiceID_; }
    void setElevenVoiceID(std::optional<std::string> value);
    const std::optional<std::string>& elevenVoiceName() const { return elevenVoiceName_; }
    void setElevenVoiceName(std::optional<std::string> value);
    const std::string& elevenModel() const { return elevenModel_; }
    void setElevenModel(std::string value);
    bool instantStart() const { return instantStart_; }
    void setInstantStart(bool value);
    bool skipSymbols() const { return skipSymbols_; }
    void setSkipSymbols(bool value);
    const HotkeyCombo& saveHotkey() const { return saveHotkey_; }
    void setSaveHotkey(HotkeyCombo value);
    const std::vector<PronunciationRule>& pronunciations() const { return pronunciations_; }
    void setPronunciations(std::vector<PronunciationRule> value);
    const std::vector<PronunciationRule>& sharedPronunciations() const {
        return sharedPronunciations_;
    }
    void setSharedPronunciations(std::vector<PronunciationRule> value);
    bool useSharedPronunciations() const { return useSharedPronunciations_; }
    void setUseSharedPronunciations(bool value);
    bool sharePronunciations() const { return sharePronunciations_; }
    void setSharePronunciations(bool value);
    const std::vector<AppVoiceRule>& appVoices() const { return appVoices_; }
    void setAppVoices(std::vector<AppVoiceRule> value);
    const HotkeyCombo& aiHotkey() const { return aiHotkey_; }
    void setAiHotkey(HotkeyCombo value);
    const std::map<PacePreset, int>& measuredWPM() const { return measuredWPM_; }
    void setMeasuredWPM(PacePreset preset, int wordsPerMinute);

    // The voice of the first rule for the application; none without a rule or an id.
    std::optional<AppVoiceRule::Voice> appVoice(const std::optional<std::string>& bundleID) const;
    // The rules in force: the user's own, then the shared ones while they are used. Own words
    // come first, so for the same word the user's fix wins ("Your own words always win.").
    std::vector<PronunciationRule> rulesInForce() const;
    // Hands rulesInForce() to the pronunciation layer.
    void applyPronunciations() const;

    int observe(Observer observer) { return observers_.add(std::move(observer)); }
    void unobserve(int id) { observers_.remove(id); }

private:
    // Reads the property's key again; whether the value changed.
    bool load(Property property);
    void write(Property property);
    void changed(Property property);
    void storeChanged(const std::string& key);
    template <typename T>
    void update(T& field, T value, Property property);

    platform::SettingsStore& store_;
    int storeObserver_ = 0;
    bool writing_ = false;
    platform::ObserverList<Property> observers_;

    std::optional<std::string> voiceIdentifier_;
    PacePreset pace_ = PacePreset::normal;
    HotkeyCombo readHotkey_;
    HotkeyCombo holdKey_;
    HotkeyCombo pauseHotkey_;
    std::optional<HotkeyCombo> stopHotkey_;
    std::vector<std::string> exclusions_;
    bool showPlayer_ = false;
    bool diagnosticsEnabled_ = false;
    bool elevenEnabled_ = false;
    std::optional<std::string> elevenVoiceID_;
    std::optional<std::string> elevenVoiceName_;
    std::string elevenModel_;
    bool instantStart_ = true;
    bool skipSymbols_ = true;
    HotkeyCombo saveHotkey_;
    std::vector<PronunciationRule> pronunciations_;
    std::vector<PronunciationRule> sharedPronunciations_;
    bool useSharedPronunciations_ = true;
    bool sharePronunciations_ = false;
    std::vector<AppVoiceRule> appVoices_;
    HotkeyCombo aiHotkey_;
    std::map<PacePreset, int> measuredWPM_;
};

// The store key of a property; none for `measuredWPM`.
const char* settingKey(ReadingSettings::Property property);

} // namespace lectorbell::coordinator
