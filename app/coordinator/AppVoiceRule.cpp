#include "coordinator/AppVoiceRule.hpp"

#include <nlohmann/json.hpp>

namespace lectorbell::coordinator {

namespace {

using Json = nlohmann::ordered_json;

Json encodeVoice(const AppVoiceRule::Voice& voice) {
    if (voice.kind == AppVoiceRule::Voice::Kind::eleven) {
        return Json{{"eleven", Json::object()}};
    }
    return Json{{"apple", Json{{"_0", voice.identifier}}}};
}

std::optional<AppVoiceRule::Voice> decodeVoice(const Json& object, std::string& whyNot) {
    if (!object.is_object()) {
        whyNot = "\"voice\" must be an object";
        return std::nullopt;
    }
    if (object.size() != 1) {
        whyNot = invalidVoiceKeysMessage;
        return std::nullopt;
    }
    const auto& [name, value] = *object.items().begin();
    if (name == "eleven" && value.is_object()) {
        return AppVoiceRule::Voice{AppVoiceRule::Voice::Kind::eleven, {}};
    }
    if (name == "apple" && value.is_object()) {
        auto identifier = value.find("_0");
        if (identifier != value.end() && identifier->is_string()) {
            return AppVoiceRule::Voice{AppVoiceRule::Voice::Kind::apple,
                                       identifier->get<std::string>()};
        }
        whyNot = "an \"apple\" voice needs its identifier as a string under \"_0\"";
        return std::nullopt;
    }
    whyNot = "a voice is {\"apple\": {\"_0\": identifier}} or {\"eleven\": {}}";
    return std::nullopt;
}

} // namespace

std::string encodeAppVoiceRules(const std::vector<AppVoiceRule>& rules) {
    Json array = Json::array();
    for (const AppVoiceRule& rule : rules) {
        array.push_back(Json{{"bundleID", rule.bundleID},
                             {"appName", rule.appName},
                             {"voice", encodeVoice(rule.voice)}});
    }
    return array.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::optional<std::vector<AppVoiceRule>> decodeAppVoiceRules(std::string_view json,
                                                             std::string* whyNot) {
    std::string reason;
    auto fail = [&]() -> std::optional<std::vector<AppVoiceRule>> {
        if (whyNot) {
            *whyNot = reason;
        }
        return std::nullopt;
    };
    Json parsed = Json::parse(json, nullptr, false);
    if (parsed.is_discarded() || !parsed.is_array()) {
        reason = "not a JSON array";
        return fail();
    }
    std::vector<AppVoiceRule> rules;
    for (const Json& element : parsed) {
        if (!element.is_object()) {
            reason = "a rule must be an object";
            return fail();
        }
        auto bundleID = element.find("bundleID");
        auto appName = element.find("appName");
        auto voice = element.find("voice");
        if (bundleID == element.end() || !bundleID->is_string() || appName == element.end() ||
            !appName->is_string() || voice == element.end()) {
            reason = "a rule needs the strings \"bundleID\" and \"appName\" and a \"voice\"";
            return fail();
        }
        std::optional<AppVoiceRule::Voice> decoded = decodeVoice(*voice, reason);
        if (!decoded) {
            return fail();
        }
        rules.push_back({bundleID->get<std::string>(), appName->get<std::string>(), *decoded});
    }
    return rules;
}

} // namespace lectorbell::coordinator
