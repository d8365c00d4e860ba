#pragma once

#include "lectorbell/ScreenGeometry.hpp"

#include <iosfwd>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lectorbell::cli {

// Reads a verb's input, a file path or "-" for standard input, as UTF-8. Invalid sequences are
// replaced by U+FFFD with one warning on `err`; no value (after an error line) when the file
// cannot be read.
std::optional<std::u16string> readTextInput(const std::string& path, std::ostream& err);

// A JSON string literal (quotes included) holding the text as UTF-8.
std::string jsonString(std::u16string_view text);
std::string jsonString(std::string_view utf8);

// A JSON value on one line in the verbs' style, keys in the order given:
// {"key": "value", "list": [1, 2]}.
std::string jsonLine(const nlohmann::ordered_json& value);

// A coordinate in points with at most two decimals, as a JSON number (80, 101.5).
nlohmann::ordered_json pointsNumber(double value);

// The pace names a verb accepts, in the presets' order.
std::vector<std::string> paceNames();

// "X,Y" with two finite numbers and nothing else.
std::optional<ScreenPoint> parsePoint(std::string_view text);

} // namespace lectorbell::cli
