#pragma once

// Turns libFuzzer's bytes into UTF-16 text as the core receives it: any unit sequence, unpaired
// surrogates included.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace lectorbell::fuzz {

inline std::u16string unitsOf(const std::uint8_t* data, std::size_t size) {
    std::u16string text(size / 2, u'\0');
    std::memcpy(text.data(), data, text.size() * sizeof(char16_t));
    return text;
}

inline std::vector<std::u16string> split(std::u16string_view text, char16_t separator) {
    std::vector<std::u16string> parts;
    for (;;) {
        std::size_t end = text.find(separator);
        parts.emplace_back(text.substr(0, end));
        if (end == std::u16string_view::npos) {
            return parts;
        }
        text.remove_prefix(end + 1);
    }
}

} // namespace lectorbell::fuzz
