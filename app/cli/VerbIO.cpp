#include "cli/VerbIO.hpp"

#include "lectorbell/Utf8.hpp"

#include <cerrno>
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
    // Replace rather than throw: the text is already valid UTF-8 unless a caller made it by hand.
    return nlohmann::json(std::string{utf8})
        .dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

} // namespace lectorbell::cli
