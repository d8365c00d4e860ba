#include "lectorbell/Pronunciations.hpp"
#include "lectorbell/Utf8.hpp"

#include <nlohmann/json.hpp>

namespace lectorbell {

namespace {

using nlohmann::json;

const std::string* stringField(const json& object, const char* key) {
    auto it = object.find(key);
    if (it == object.end() || !it->is_string()) {
        return nullptr;
    }
    return &it->get_ref<const std::string&>();
}

} // namespace

std::string encodePronunciationRules(const std::vector<PronunciationRule>& rules) {
    json array = json::array();
    for (const PronunciationRule& rule : rules) {
        array.push_back(json{
            {"id", rule.id.string()}, {"word", toUtf8(rule.word)}, {"sayAs", toUtf8(rule.sayAs)}});
    }
    return array.dump(-1, ' ', false, json::error_handler_t::replace);
}

std::optional<std::vector<PronunciationRule>> decodePronunciationRules(std::string_view text,
                                                                       std::string* whyNot) {
    auto fail = [&](std::string reason) -> std::optional<std::vector<PronunciationRule>> {
        if (whyNot) {
            *whyNot = std::move(reason);
        }
        return std::nullopt;
    };
    json parsed = json::parse(text, nullptr, false);
    if (parsed.is_discarded()) {
        return fail("not valid JSON");
    }
    if (!parsed.is_array()) {
        return fail("not a JSON array");
    }
    std::vector<PronunciationRule> rules;
    rules.reserve(parsed.size());
    for (std::size_t i = 0; i < parsed.size(); ++i) {
        const json& element = parsed[i];
        std::string where = "element " + std::to_string(i);
        if (!element.is_object()) {
            return fail(where + " is not an object");
        }
        const std::string* id = stringField(element, "id");
        const std::string* word = stringField(element, "word");
        const std::string* sayAs = stringField(element, "sayAs");
        if (!id || !word || !sayAs) {
            return fail(where + " needs the strings \"id\", \"word\" and \"sayAs\"");
        }
        auto uuid = Uuid::parse(*id);
        if (!uuid) {
            return fail(where + " has an \"id\" that is not a UUID");
        }
        rules.push_back(PronunciationRule{*uuid, fromUtf8(*word), fromUtf8(*sayAs)});
    }
    return rules;
}

} // namespace lectorbell
