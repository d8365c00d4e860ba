#pragma once

#include <string>
#include <string_view>

namespace lectorbell {

// Conversions at the edges (files, command line, JSON, logs). Core text is UTF-16.
struct Utf8Decoded {
    std::u16string text;
    // Invalid byte sequences replaced by U+FFFD.
    std::size_t replacements = 0;
};

Utf8Decoded decodeUtf8(std::string_view bytes);
std::u16string fromUtf8(std::string_view bytes);
// Unpaired surrogates become U+FFFD.
std::string toUtf8(std::u16string_view text);

} // namespace lectorbell
