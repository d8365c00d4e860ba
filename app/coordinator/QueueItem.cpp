#include "coordinator/QueueItem.hpp"

#include "coordinator/IsoDate.hpp"
#include "lectorbell/Utf8.hpp"

#include <nlohmann/json.hpp>

namespace lectorbell::coordinator {

namespace {

using Json = nlohmann::ordered_json;

std::optional<QueueItem> decodeItem(const Json& element) {
    if (!element.is_object()) {
        return std::nullopt;
    }
    auto date = element.find("date");
    auto appName = element.find("appName");
    auto text = element.find("text");
    auto listened = element.find("listened");
    auto bundleID = element.find("bundleID");
    if (date == element.end() || !date->is_string() || appName == element.end() ||
        !appName->is_string() || text == element.end() || !text->is_string() ||
        listened == element.end() || !listened->is_boolean()) {
        return std::nullopt;
    }
    std::optional<Date> when = parseIsoDate(date->get_ref<const std::string&>());
    if (!when) {
        return std::nullopt;
    }
    QueueItem item;
    item.date = *when;
    item.appName = appName->get<std::string>();
    if (bundleID != element.end() && bundleID->is_string()) {
        item.bundleID = bundleID->get<std::string>();
    }
    item.text = fromUtf8(text->get_ref<const std::string&>());
    item.listened = listened->get<bool>();
    return item;
}

// A queue nests two levels; far deeper input is not a queue, and would only keep the parser
// busy (50 MB of "[" takes it many seconds).
bool nestedDeeperThan(std::string_view bytes, int most) {
    int depth = 0;
    bool inString = false;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        char c = bytes[i];
        if (inString) {
            if (c == '\\') {
                ++i;
            } else if (c == '"') {
                inString = false;
            }
        } else if (c == '"') {
            inString = true;
        } else if (c == '[' || c == '{') {
            if (++depth > most) {
                return true;
            }
        } else if (c == ']' || c == '}') {
            --depth;
        }
    }
    return false;
}

} // namespace

std::string encodeQueue(const std::vector<QueueItem>& items) {
    Json array = Json::array();
    for (const QueueItem& item : items) {
        Json object{{"date", isoDate(item.date)}, {"appName", item.appName}};
        if (item.bundleID) {
            object["bundleID"] = *item.bundleID;
        }
        object["text"] = toUtf8(item.text);
        object["listened"] = item.listened;
        array.push_back(std::move(object));
    }
    return array.dump(-1, ' ', false, Json::error_handler_t::replace);
}

DecodedQueue decodeQueue(std::string_view bytes) {
    DecodedQueue decoded;
    if (nestedDeeperThan(bytes, 16)) {
        decoded.unreadable = true;
        return decoded;
    }
    Json parsed = Json::parse(bytes, nullptr, false);
    if (parsed.is_discarded()) {
        // Invalid UTF-8 fails the whole parse: read it again with the bad bytes replaced.
        std::string repaired = toUtf8(decodeUtf8(bytes).text);
        if (repaired != bytes) {
            parsed = Json::parse(repaired, nullptr, false);
            decoded.repairedText = !parsed.is_discarded();
        }
    }
    if (parsed.is_discarded() || !parsed.is_array()) {
        decoded.unreadable = true;
        return decoded;
    }
    decoded.items.reserve(parsed.size());
    for (const Json& element : parsed) {
        if (std::optional<QueueItem> item = decodeItem(element)) {
            decoded.items.push_back(std::move(*item));
        } else {
            ++decoded.dropped;
        }
    }
    return decoded;
}

} // namespace lectorbell::coordinator
