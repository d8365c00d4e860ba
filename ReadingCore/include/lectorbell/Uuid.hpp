#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace lectorbell {

// A random (version 4) UUID that identifies a block or a record.
struct Uuid {
    std::array<std::uint8_t, 16> bytes{};

    static Uuid random();
    // Lower-case 8-4-4-4-12 form.
    std::string string() const;
    // The 8-4-4-4-12 hexadecimal form in either case; no value for anything else.
    static std::optional<Uuid> parse(std::string_view text);

    friend bool operator==(const Uuid&, const Uuid&) = default;
    friend auto operator<=>(const Uuid&, const Uuid&) = default;
};

} // namespace lectorbell
