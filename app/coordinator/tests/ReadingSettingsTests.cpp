#include "MemorySettingsStore.hpp"
#include "coordinator/ReadingSettings.hpp"
#include "coordinator/SettingKeys.hpp"
#include "lectorbell/SpeechCleanup.hpp"

#include <gtest/gtest.h>

namespace lectorbell::coordinator {
namespace {

using platform::SettingValue;
using P = ReadingSettings::Property;
using testing::MemorySettingsStore;

TEST(ReadingSettings, FreshStoreGivesEveryDefault) {
    MemorySettingsStore store;
    ReadingSettings settings{store};
    EXPECT_EQ(settings.voiceIdentifier(), std::nullopt);
    EXPECT_EQ(settings.pace(), PacePreset::normal);
    EXPECT_EQ(settings.readHotkey(), (HotkeyCombo{15, 768, "Shift+Super+R"}));
    EXPECT_EQ(settings.holdKey(), (HotkeyCombo{50, 0, "` (key below Esc)"}));
    EXPECT_EQ(settings.pauseHotkey(), (HotkeyCombo{15, 2816, "Alt+Shift+Super+R"}));
    EXPECT_EQ(settings.stopHotkey(), std::nullopt);
    EXPECT_TRUE(settings.exclusions().empty());
    EXPECT_FALSE(settings.showPlayer());
    EXPECT_FALSE(settings.diagnosticsEnabled());
    EXPECT_FALSE(settings.elevenEnabled());
    EXPECT_EQ(settings.elevenVoiceID(), std::nullopt);
    EXPECT_EQ(settings.elevenVoiceName(), std::nullopt);
    EXPECT_EQ(settings.elevenModel(), "eleven_v4_turbo");
    EXPECT_TRUE(settings.instantStart());
    EXPECT_TRUE(settings.skipSymbols());
    EXPECT_EQ(settings.saveHotkey(), (HotkeyCombo{1, 6144, "Ctrl+Alt+S"}));
    EXPECT_TRUE(settings.pronunciations().empty());
    EXPECT_TRUE(settings.sharedPronunciations().empty());
    EXPECT_TRUE(settings.useSharedPronunciations());
    EXPECT_FALSE(settings.sharePronunciations());
    EXPECT_TRUE(settings.appVoices().empty());
    EXPECT_EQ(settings.aiHotkey(), (HotkeyCombo{19, 256, "Super+2"}));
    EXPECT_TRUE(settings.measuredWPM().empty());
    // Loading writes nothing: a fresh install leaves the store empty.
    EXPECT_EQ(store.writes(), 0);
}

struct BadValue {
    const char* key;
    SettingValue stored;
};

class ReadingSettingsBadValue : public ::testing::TestWithParam<BadValue> {};

// Every value a hand edit or an older build could leave: each reads as a fresh install does.
TEST_P(ReadingSettingsBadValue, ReadsAsTheDefault) {
    MemorySettingsStore fresh;
    ReadingSettings defaults{fresh};
    MemorySettingsStore store;
    store.setValue(GetParam().key, GetParam().stored);
    ReadingSettings settings{store};
    EXPECT_EQ(settings.voiceIdentifier(), defaults.voiceIdentifier());
    EXPECT_EQ(settings.pace(), defaults.pace());
    EXPECT_EQ(settings.readHotkey(), defaults.readHotkey());
    EXPECT_EQ(settings.stopHotkey(), defaults.stopHotkey());
    EXPECT_EQ(settings.exclusions(), defaults.exclusions());
    EXPECT_EQ(settings.showPlayer(), defaults.showPlayer());
    EXPECT_EQ(settings.elevenModel(), defaults.elevenModel());
    EXPECT_EQ(settings.instantStart(), defaults.instantStart());
    EXPECT_EQ(settings.pronunciations(), defaults.pronunciations());
    EXPECT_EQ(settings.appVoices(), defaults.appVoices());
    // The bad value is left as it was: nothing the user wrote is thrown away.
    EXPECT_EQ(store.value(GetParam().key), GetParam().stored);
}

INSTANTIATE_TEST_SUITE_P(
    WrongTypesAndUndecodable, ReadingSettingsBadValue,
    ::testing::Values(
        BadValue{"voiceIdentifier", SettingValue{true}}, BadValue{"pace", SettingValue{true}},
        BadValue{"pace", SettingValue{std::string{"Fast"}}},
        BadValue{"pace", SettingValue{std::string{""}}},
        BadValue{"readHotkey", SettingValue{std::string{"{not json"}}},
        BadValue{"readHotkey", SettingValue{std::string{R"({"keyCode":15,"modifiers":768})"}}},
        BadValue{"readHotkey",
                 SettingValue{std::string{R"({"keyCode":-1,"modifiers":0,"display":"x"})"}}},
        BadValue{"readHotkey", SettingValue{std::string{
                                   R"({"keyCode":4294967296,"modifiers":0,"display":"x"})"}}},
        BadValue{"stopHotkey", SettingValue{std::int64_t{3}}},
        BadValue{"exclusions", SettingValue{std::string{"[1,2]"}}},
        BadValue{"exclusions", SettingValue{std::string{"org.gnome.TextEditor"}}},
        BadValue{"showPlayerPanel", SettingValue{std::string{"yes"}}},
        BadValue{"showPlayerPanel", SettingValue{std::int64_t{1}}},
        BadValue{"elevenModel", SettingValue{std::int64_t{5}}},
        BadValue{"instantStart", SettingValue{std::string{"FALSE"}}},
        BadValue{"pronunciations", SettingValue{std::string{R"([{"word":"a","sayAs":"b"}])"}}},
        BadValue{"pronunciations", SettingValue{std::string{"\xff\xfe"}}},
        BadValue{
            "appVoices",
            SettingValue{std::string{
                R"([{"bundleID":"a","appName":"A","voice":{"apple":{"_0":"x"},"eleven":{}}}])"}}}),
    [](const ::testing::TestParamInfo<BadValue>& info) {
        return std::string{info.param.key} + std::to_string(info.index);
    });

TEST(ReadingSettings, ModelRule) {
    struct Case {
        std::optional<std::string> stored;
        std::string model;
    };
    for (const Case& c :
         {Case{std::nullopt, "eleven_v4_turbo"}, Case{"eleven_flash_v2_5", "eleven_v4_turbo"},
          Case{"eleven_multilingual_v2", "eleven_multilingual_v2"},
          Case{"eleven_v4_turbo", "eleven_v4_turbo"}}) {
        MemorySettingsStore store;
        if (c.stored) {
            store.setValue("elevenModel", *c.stored);
        }
        EXPECT_EQ(ReadingSettings{store}.elevenModel(), c.model) << c.stored.value_or("absent");
    }
}

TEST(ReadingSettings, PaceRule) {
    struct Case {
        std::string stored;
        PacePreset pace;
    };
    for (const Case& c :
         {Case{"slow", PacePreset::slow}, Case{"normal", PacePreset::normal},
          Case{"fast", PacePreset::fast}, Case{"faster", PacePreset::faster},
          Case{"veryFast", PacePreset::veryFast}, Case{"maximum", PacePreset::maximum},
          Case{"veryfast", PacePreset::normal}, Case{"Slow", PacePreset::normal},
          Case{" slow", PacePreset::normal}}) {
        MemorySettingsStore store;
        store.setValue("pace", c.stored);
        EXPECT_EQ(ReadingSettings{store}.pace(), c.pace) << c.stored;
    }
}

TEST(ReadingSettings, WritesEachChangeAtOnceInItsStoredForm) {
    MemorySettingsStore store;
    ReadingSettings settings{store};
    std::vector<P> told;
    settings.observe([&told](P property) { told.push_back(property); });

    settings.setPace(PacePreset::veryFast);
    settings.setPace(PacePreset::veryFast);
    settings.setShowPlayer(true);
    settings.setStopHotkey(HotkeyCombo{35, 4096 | 2048, "Ctrl+Alt+P"});
    settings.setExclusions({"org.keepassxc.KeePassXC"});
    settings.setAppVoices({{"chromium", "Chromium", {AppVoiceRule::Voice::Kind::eleven, {}}}});
    settings.setElevenVoiceID("abc");
    settings.setElevenVoiceID(std::nullopt);

    EXPECT_EQ(store.stringValue("pace"), "veryFast");
    EXPECT_EQ(store.value("showPlayerPanel"), SettingValue{true});
    EXPECT_EQ(store.stringValue("stopHotkey"),
              R"({"keyCode":35,"modifiers":6144,"display":"Ctrl+Alt+P"})");
    EXPECT_EQ(store.stringValue("exclusions"), R"(["org.keepassxc.KeePassXC"])");
    EXPECT_EQ(store.stringValue("appVoices"),
              R"([{"bundleID":"chromium","appName":"Chromium","voice":{"eleven":{}}}])");
    EXPECT_FALSE(store.contains("elevenVoiceID"));
    EXPECT_EQ(told, (std::vector<P>{P::pace, P::showPlayer, P::stopHotkey, P::exclusions,
                                    P::appVoices, P::elevenVoiceID, P::elevenVoiceID}));

    // What was written reads back the same in a second copy of the application.
    ReadingSettings again{store};
    EXPECT_EQ(again.pace(), PacePreset::veryFast);
    EXPECT_EQ(again.stopHotkey(), settings.stopHotkey());
    EXPECT_EQ(again.appVoices(), settings.appVoices());
}

TEST(ReadingSettings, TakesInChangesMadeElsewhere) {
    MemorySettingsStore store;
    ReadingSettings settings{store};
    std::vector<P> told;
    settings.observe([&told](P property) { told.push_back(property); });

    store.setValue("pace", std::string{"fast"});
    store.setValue("skipSymbols", false);
    store.setValue("pace", std::string{"nonsense"});
    store.setValue("setupDone", true);

    EXPECT_EQ(settings.pace(), PacePreset::normal);
    EXPECT_FALSE(settings.skipSymbols());
    EXPECT_FALSE(SpeechCleanup::enabled);
    EXPECT_EQ(told, (std::vector<P>{P::pace, P::skipSymbols, P::pace}));
    settings.setSkipSymbols(true);
    EXPECT_TRUE(SpeechCleanup::enabled);
}

TEST(ReadingSettings, AnExplicitModelChoiceIsNotRewrittenWhileRunning) {
    MemorySettingsStore store;
    ReadingSettings settings{store};
    settings.setElevenModel("eleven_flash_v2_5");
    EXPECT_EQ(settings.elevenModel(), "eleven_flash_v2_5");
}

TEST(ReadingSettings, OwnWordsWinOverSharedOnes) {
    MemorySettingsStore store;
    ReadingSettings settings{store};
    settings.setPronunciations({{Uuid::random(), u"SQL", u"sequel"}});
    settings.setSharedPronunciations(
        {{Uuid::random(), u"sql", u"squeal"}, {Uuid::random(), u"GIF", u"jif"}});
    EXPECT_EQ(Pronunciations::apply(u"SQL and GIF"), u"sequel and jif");

    settings.setUseSharedPronunciations(false);
    EXPECT_EQ(Pronunciations::apply(u"SQL and GIF"), u"sequel and GIF");

    // A second copy loads the same rules in force.
    settings.setUseSharedPronunciations(true);
    Pronunciations::setRules({});
    ReadingSettings again{store};
    EXPECT_EQ(Pronunciations::apply(u"sql, gif"), u"sequel, jif");
    Pronunciations::setRules({});
}

TEST(ReadingSettings, AppVoiceIsTheFirstMatchingRule) {
    MemorySettingsStore store;
    ReadingSettings settings{store};
    using Kind = AppVoiceRule::Voice::Kind;
    settings.setAppVoices({{"org.gnome.TextEditor", "Text Editor", {Kind::apple, "en-gb"}},
                           {"chromium", "Chromium", {Kind::eleven, {}}},
                           {"org.gnome.TextEditor", "Text Editor", {Kind::apple, "de"}}});
    EXPECT_EQ(settings.appVoice("org.gnome.TextEditor"),
              (AppVoiceRule::Voice{Kind::apple, "en-gb"}));
    EXPECT_EQ(settings.appVoice("chromium"), (AppVoiceRule::Voice{Kind::eleven, {}}));
    EXPECT_EQ(settings.appVoice("org.gnome.Terminal"), std::nullopt);
    EXPECT_EQ(settings.appVoice(std::nullopt), std::nullopt);
}

TEST(ReadingSettings, MeasuredPaceIsKeptForTheSessionOnly) {
    MemorySettingsStore store;
    ReadingSettings settings{store};
    settings.setMeasuredWPM(PacePreset::fast, 210);
    EXPECT_EQ(settings.measuredWPM().at(PacePreset::fast), 210);
    EXPECT_EQ(store.writes(), 0);
}

} // namespace
} // namespace lectorbell::coordinator
