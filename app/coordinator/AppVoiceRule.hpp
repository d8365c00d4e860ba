#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lectorbell::coordinator {

// One application's own voice. `bundleID` is the application's id as the exclusion list uses
// it (a desktop application id on Linux).
struct AppVoiceRule {
    struct Voice {
        enum class Kind {
            // A built-in voice, by its identifier (stored under the case name "apple").
            apple,
            // The user's cloud voice as chosen in the settings.
            eleven,
        };
        Kind kind = Kind::apple;
        std::string identifier;

        friend bool operator==(const Voice&, const Voice&) = default;
    };

    std::string bundleID;
    std::string appName;
    Voice voice;

    friend bool operator==(const AppVoiceRule&, const AppVoiceRule&) = default;
};

// The message for a voice object without exactly one key.
inline constexpr const char* invalidVoiceKeysMessage =
    "Invalid number of keys found, expected one.";

// The stored form: a JSON array of {"bundleID", "appName", "voice"}, the voice being
// {"apple": {"_0": identifier}} or {"eleven": {}}.
std::string encodeAppVoiceRules(const std::vector<AppVoiceRule>& rules);
// No value when any rule fails to decode; `whyNot` then says why.
std::optional<std::vector<AppVoiceRule>> decodeAppVoiceRules(std::string_view json,
                                                             std::string* whyNot = nullptr);

} // namespace lectorbell::coordinator
