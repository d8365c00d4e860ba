#include "cli/VerbIO.hpp"

#include "lectorbell/PacePreset.hpp"
#include "lectorbell/Utf8.hpp"

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>

namespace lectorbell::cli {

std::optional<std::u16string> readTextInput(const std::string& path, std::ostream& err) {
    std::string bytes;
    if (path.empty() || path == "-") {
        std::ostringstream buffer;
        buffer << std::cin.rdbuf();
        bytes = std::move(buffer).str();
    } else {
        std::ifstream file{path, std::ios::binary};
        if (!file) {
            err << "lectorbell: cannot read " << path << ": " << std::strerror(errno) << '\n';
            return std::nullopt;
        }
        bytes.assign(std::istreambuf_iterator<char>{file}, std::istreambuf_iterator<char>{});
    }
    Utf8Decoded decoded = decodeUtf8(bytes);
    if (decoded.replacements > 0) {
        err << "lectorbell: warning: input is not valid UTF-8; " << decoded.replacements
            << " invalid sequence(s) replaced by U+FFFD\n";
    }
    return std::move(decoded.text);
}

std::string jsonString(std::u16string_view text) {
    return jsonString(toUtf8(text));
}

std::string jsonString(std::string_view utf8) {
    return jsonLine(nlohmann::ordered_json(std::string{utf8}));
}

std::string jsonLine(const nlohmann::ordered_json& value) {
    std::string line;
    if (value.is_object()) {
        line += '{';
        const char* separator = "";
        for (const auto& [key, item] : value.items()) {
            line += separator + jsonString(key) + ": " + jsonLine(item);
            separator = ", ";
        }
        return line + '}';
    }
    if (value.is_array()) {
        line += '[';
        const char* separator = "";
        for (const nlohmann::ordered_json& item : value) {
            line += separator + jsonLine(item);
            separator = ", ";
        }
        return line + ']';
    }
    // Replace rather than throw: text is valid UTF-8 unless a caller made it by hand.
    return value.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

nlohmann::ordered_json pointsNumber(double value) {
    constexpr double largestWhole = 1e15;
    if (!std::isfinite(value)) {
        return 0;
    }
    double hundredths = std::round(value * 100);
    if (std::fmod(hundredths, 100) == 0 && std::abs(value) < largestWhole) {
        // Whole points print without a fraction; this also turns -0 into 0.
        return static_cast<std::int64_t>(hundredths / 100);
    }
    return hundredths / 100;
}

std::vector<std::string> paceNames() {
    std::vector<std::string> names;
    names.reserve(allPacePresets.size());
    for (PacePreset preset : allPacePresets) {
        names.emplace_back(rawValue(preset));
    }
    return names;
}

std::optional<ScreenPoint> parsePoint(std::string_view text) {
    std::size_t comma = text.find(',');
    if (comma == std::string_view::npos) {
        return std::nullopt;
    }
    auto number = [](std::string_view part) -> std::optional<double> {
        double value = 0;
        auto [end, error] = std::from_chars(part.data(), part.data() + part.size(), value);
        if (error != std::errc{} || end != part.data() + part.size() || !std::isfinite(value)) {
            return std::nullopt;
        }
        return value;
    };
    std::optional<double> x = number(text.substr(0, comma));
    std::optional<double> y = number(text.substr(comma + 1));
    if (!x || !y) {
        return std::nullopt;
    }
    return ScreenPoint{*x, *y};
}

} // namespace lectorbell::cli
