#include "coordinator/AppVoiceRule.hpp"
#include "coordinator/HotkeyCombo.hpp"
#include "coordinator/IsoDate.hpp"

#include <gtest/gtest.h>

namespace lectorbell::coordinator {
namespace {

TEST(HotkeyCombo, LinuxDisplayNamesSuperAndAlt) {
    struct Case {
        std::uint32_t keyCode;
        std::uint32_t modifiers;
        const char* display;
    };
    for (const Case& c :
         {Case{15, 768, "Shift+Super+R"}, Case{15, 2816, "Alt+Shift+Super+R"},
          Case{1, 6144, "Ctrl+Alt+S"}, Case{19, 256, "Super+2"}, Case{50, 0, "` (key below Esc)"},
          Case{10, 0, "§ (ISO key below Esc)"}, Case{49, 6144, "Ctrl+Alt+Space"},
          Case{15, 4864, "Ctrl+Shift+Super+R"}, Case{47, 256, "Super+."}, Case{50, 512, "Shift+`"},
          Case{200, 256, "Super+Key 200"}}) {
        EXPECT_EQ(linuxDisplay(c.keyCode, c.modifiers), c.display);
    }
}

TEST(HotkeyCombo, StoredFormRoundTrips) {
    HotkeyCombo combo{15, 768, "Shift+Super+R"};
    std::string json = encodeHotkey(combo);
    EXPECT_EQ(json, R"({"keyCode":15,"modifiers":768,"display":"Shift+Super+R"})");
    EXPECT_EQ(decodeHotkey(json), combo);
    // Key order and extra keys do not matter.
    EXPECT_EQ(decodeHotkey(R"({"display":"x","modifiers":0,"keyCode":4294967295,"more":1})"),
              (HotkeyCombo{4294967295U, 0, "x"}));
}

TEST(HotkeyCombo, RefusesWhatIsNotAShortcut) {
    for (const char* json : {"", "[]", "15", R"({"keyCode":15,"modifiers":768})",
                             R"({"keyCode":"15","modifiers":768,"display":"x"})",
                             R"({"keyCode":1.5,"modifiers":768,"display":"x"})",
                             R"({"keyCode":15,"modifiers":-1,"display":"x"})",
                             R"({"keyCode":15,"modifiers":4294967296,"display":"x"})",
                             R"({"keyCode":15,"modifiers":0,"display":null})"}) {
        std::string why;
        EXPECT_EQ(decodeHotkey(json, &why), std::nullopt) << json;
        EXPECT_FALSE(why.empty()) << json;
    }
}

TEST(AppVoiceRule, StoredFormIsTheOneKeyVoiceObject) {
    using Kind = AppVoiceRule::Voice::Kind;
    std::vector<AppVoiceRule> rules{{"org.gnome.TextEditor", "Text Editor", {Kind::apple, "en-gb"}},
                                    {"chromium", "Chromium", {Kind::eleven, {}}}};
    std::string json = encodeAppVoiceRules(rules);
    EXPECT_EQ(json, R"([{"bundleID":"org.gnome.TextEditor","appName":"Text Editor",)"
                    R"("voice":{"apple":{"_0":"en-gb"}}},)"
                    R"({"bundleID":"chromium","appName":"Chromium","voice":{"eleven":{}}}])");
    EXPECT_EQ(decodeAppVoiceRules(json), rules);
}

TEST(AppVoiceRule, AVoiceNeedsExactlyOneKey) {
    struct Case {
        const char* voice;
        const char* why;
    };
    for (const Case& c :
         {Case{R"({"apple":{"_0":"x"},"eleven":{}})", invalidVoiceKeysMessage},
          Case{R"({})", invalidVoiceKeysMessage},
          Case{R"({"other":{}})", R"(a voice is {"apple": {"_0": identifier}} or {"eleven": {}})"},
          Case{R"({"apple":{}})",
               R"(an "apple" voice needs its identifier as a string under "_0")"},
          Case{R"("eleven")", R"("voice" must be an object)"}}) {
        std::string json =
            std::string{R"([{"bundleID":"a","appName":"A","voice":)"} + c.voice + "}]";
        std::string why;
        EXPECT_EQ(decodeAppVoiceRules(json, &why), std::nullopt) << c.voice;
        EXPECT_EQ(why, c.why) << c.voice;
    }
}

TEST(IsoDate, RoundTripsWithMilliseconds) {
    using namespace std::chrono;
    Date date = sys_days{2026y / March / 7} + 10h + 15min + 2s + 250ms;
    EXPECT_EQ(isoDate(date), "2026-03-07T10:15:02.250Z");
    EXPECT_EQ(parseIsoDate("2026-03-07T10:15:02.250Z"), date);
    EXPECT_EQ(parseIsoDate("2026-03-07T10:15:02Z"), date - 250ms);
    for (const char* bad :
         {"", "2026-03-07", "2026-02-30T10:15:02Z", "2026-03-07T24:00:00Z", "2026-03-07 10:15:02Z",
          "2026-03-07T10:15:02.25Z", "2026-03-07T10:15:02+01:00"}) {
        EXPECT_EQ(parseIsoDate(bad), std::nullopt) << bad;
    }
}

} // namespace
} // namespace lectorbell::coordinator
