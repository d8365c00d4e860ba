#include "platform/SettingsStore.hpp"

#include <charconv>

namespace lectorbell::platform {

namespace {

template <typename Number>
std::optional<Number> parseWhole(const std::string& text) {
    Number number{};
    const char* end = text.data() + text.size();
    auto [ptr, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc{} || ptr != end || text.empty()) {
        return std::nullopt;
    }
    return number;
}

} // namespace

std::optional<bool> SettingsStore::boolValue(const std::string& key) const {
    std::optional<SettingValue> stored = value(key);
    if (!stored) {
        return std::nullopt;
    }
    if (const bool* flag = std::get_if<bool>(&*stored)) {
        return *flag;
    }
    if (const std::string* text = std::get_if<std::string>(&*stored)) {
        if (*text == "true") {
            return true;
        }
        if (*text == "false") {
            return false;
        }
    }
    return std::nullopt;
}

std::optional<std::int64_t> SettingsStore::intValue(const std::string& key) const {
    std::optional<SettingValue> stored = value(key);
    if (!stored) {
        return std::nullopt;
    }
    if (const std::int64_t* number = std::get_if<std::int64_t>(&*stored)) {
        return *number;
    }
    if (const std::string* text = std::get_if<std::string>(&*stored)) {
        return parseWhole<std::int64_t>(*text);
    }
    return std::nullopt;
}

std::optional<double> SettingsStore::doubleValue(const std::string& key) const {
    std::optional<SettingValue> stored = value(key);
    if (!stored) {
        return std::nullopt;
    }
    if (const double* number = std::get_if<double>(&*stored)) {
        return *number;
    }
    if (const std::int64_t* whole = std::get_if<std::int64_t>(&*stored)) {
        return static_cast<double>(*whole);
    }
    if (const std::string* text = std::get_if<std::string>(&*stored)) {
        return parseWhole<double>(*text);
    }
    return std::nullopt;
}

std::optional<std::string> SettingsStore::stringValue(const std::string& key) const {
    std::optional<SettingValue> stored = value(key);
    if (!stored) {
        return std::nullopt;
    }
    if (std::string* text = std::get_if<std::string>(&*stored)) {
        return std::move(*text);
    }
    return std::nullopt;
}

} // namespace lectorbell::platform
