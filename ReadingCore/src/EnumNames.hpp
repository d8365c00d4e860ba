#pragma once

// Raw-value tables for the enumerations: one array per type, indexed by the case's position.

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace lectorbell::detail {

template <class E, std::size_t N>
std::string_view nameOf(const std::array<std::string_view, N>& names, E value) {
    auto i = static_cast<std::size_t>(value);
    return i < N ? names[i] : std::string_view{};
}

template <class E, std::size_t N>
std::optional<E> caseNamed(const std::array<std::string_view, N>& names, std::string_view raw) {
    for (std::size_t i = 0; i < N; ++i) {
        if (names[i] == raw) {
            return static_cast<E>(i);
        }
    }
    return std::nullopt;
}

} // namespace lectorbell::detail
