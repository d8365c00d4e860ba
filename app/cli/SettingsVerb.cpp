// `lectorbell settings [get KEY | set KEY VALUE | reset KEY]`: every user setting with its value
// and whether it is the default (JSON), or one setting read, written or reset. The running
// application takes a change in at once.

#include "cli/SettingJson.hpp"
#include "cli/Stores.hpp"
#include "cli/VerbSupport.hpp"
#include "cli/Verbs.hpp"

#include <iostream>
#include <memory>

namespace lectorbell::cli {

namespace {

using coordinator::SettingDescription;
using Json = nlohmann::ordered_json;

struct SettingsArgs {
    std::string key;
    std::string value;
};

const SettingDescription* knownKey(const std::string& key, const char* action) {
    if (key.empty()) {
        refuse(std::string{"settings "} + action + ": name a key (see `lectorbell settings`)");
        return nullptr;
    }
    const SettingDescription* setting = coordinator::findSettingDescription(key);
    if (!setting) {
        refuse("settings " + std::string{action} + ": unknown key " + key +
               " (see `lectorbell settings`)");
    }
    return setting;
}

int listSettings(platform::Platform& platform) {
    Stores stores = makeStores(platform);
    Json all = Json::object();
    for (const SettingDescription& setting : coordinator::settingDescriptions()) {
        Json value = SettingJson::effective(setting, *stores.settings);
        bool isDefault = value == SettingJson::fallback(setting);
        all[std::string{setting.key}] = Json{{"value", value}, {"default", isDefault}};
    }
    std::cout << all.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
    return 0;
}

int getSetting(platform::Platform& platform, const SettingsArgs& args) {
    const SettingDescription* setting = knownKey(args.key, "get");
    if (!setting) {
        return exitBadInput;
    }
    Stores stores = makeStores(platform);
    Json value = SettingJson::effective(*setting, *stores.settings);
    if (!value.is_null()) {
        std::cout << SettingJson::shown(value) << '\n';
    }
    return 0;
}

int setSetting(platform::Platform& platform, const SettingsArgs& args, bool valueGiven) {
    const SettingDescription* setting = knownKey(args.key, "set");
    if (!setting) {
        return exitBadInput;
    }
    if (!valueGiven) {
        return refuse("settings set " + args.key + ": give the value after the key");
    }
    SettingJson::Parsed parsed = SettingJson::parse(*setting, args.value);
    if (!parsed.value) {
        return refuse(parsed.problem);
    }
    Stores stores = makeStores(platform);
    stores.settings->setValue(args.key, *parsed.value);
    return 0;
}

int resetSetting(platform::Platform& platform, const SettingsArgs& args) {
    const SettingDescription* setting = knownKey(args.key, "reset");
    if (!setting) {
        return exitBadInput;
    }
    Stores stores = makeStores(platform);
    stores.settings->remove(args.key);
    return 0;
}

} // namespace

void addSettingsVerb(CLI::App& app, VerbOutcome& outcome, platform::Platform& platform) {
    auto args = std::make_shared<SettingsArgs>();
    CLI::App* verb = app.add_subcommand(
        "settings", "Show every setting as JSON, or get, set or reset one setting");
    verb->require_subcommand(0, 1);

    CLI::App* get = verb->add_subcommand("get", "Print one setting's value");
    get->add_option("key", args->key, "The setting's key");
    get->callback(
        [args, &outcome, &platform] { outcome.exitStatus = getSetting(platform, *args); });

    CLI::App* set = verb->add_subcommand(
        "set", "Store one setting: a string, true/false, a number or JSON as stored");
    set->add_option("key", args->key, "The setting's key");
    CLI::Option* value = set->add_option("value", args->value, "The value in its stored form");
    set->callback([args, value, &outcome, &platform] {
        outcome.exitStatus = setSetting(platform, *args, value->count() > 0);
    });

    CLI::App* reset = verb->add_subcommand("reset", "Return one setting to its default");
    reset->add_option("key", args->key, "The setting's key");
    reset->callback(
        [args, &outcome, &platform] { outcome.exitStatus = resetSetting(platform, *args); });

    verb->callback([verb, &outcome, &platform] {
        if (verb->get_subcommands().empty()) {
            outcome.exitStatus = listSettings(platform);
        }
    });
}

} // namespace lectorbell::cli
