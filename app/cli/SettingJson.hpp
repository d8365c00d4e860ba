#pragma once

#include "coordinator/SettingKeys.hpp"
#include "platform/SettingsStore.hpp"

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

// Settings as the `settings` verb shows and takes them: each key's value in its JSON form (null
// for none), read with the same rules as the application (a value that does not decode reads as
// the default).
namespace lectorbell::cli::SettingJson {

nlohmann::ordered_json effective(const coordinator::SettingDescription& setting,
                                 const platform::SettingsStore& store);
nlohmann::ordered_json fallback(const coordinator::SettingDescription& setting);

struct Parsed {
    // The value to store; none when the input was refused.
    std::optional<platform::SettingValue> value;
    // Why not: names the expected form.
    std::string problem;
};
// The user's VALUE in the stored form: a string, true/false, or JSON.
Parsed parse(const coordinator::SettingDescription& setting, std::string_view input);

// As `settings get` prints it: a string bare, a bool as true/false, none as nothing, anything
// else as its JSON.
std::string shown(const nlohmann::ordered_json& value);

} // namespace lectorbell::cli::SettingJson
