#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>

namespace lectorbell::cli {

// Reads a verb's input, a file path or "-" for standard input, as UTF-8. Invalid sequences are
// replaced by U+FFFD with one warning on `err`; no value (after an error line) when the file
// cannot be read.
std::optional<std::u16string> readTextInput(const std::string& path, std::ostream& err);

// A JSON string literal (quotes included) holding the text as UTF-8.
std::string jsonString(std::u16string_view text);
std::string jsonString(std::string_view utf8);

} // namespace lectorbell::cli
