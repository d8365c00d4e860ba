#include "lectorbell/Uuid.hpp"

#include <random>

namespace lectorbell {

Uuid Uuid::random() {
    // One seeded engine per thread: random_device per UUID would cost a system call each.
    thread_local std::mt19937_64 engine{[] {
        std::random_device device;
        std::seed_seq seed{device(), device(), device(), device(), device(), device()};
        return std::mt19937_64{seed};
    }()};
    Uuid uuid;
    for (std::size_t i = 0; i < uuid.bytes.size(); i += 8) {
        std::uint64_t word = engine();
        for (std::size_t j = 0; j < 8; ++j) {
            uuid.bytes[i + j] = static_cast<std::uint8_t>(word >> (8 * j));
        }
    }
    uuid.bytes[6] = static_cast<std::uint8_t>((uuid.bytes[6] & 0x0F) | 0x40); // version 4
    uuid.bytes[8] = static_cast<std::uint8_t>((uuid.bytes[8] & 0x3F) | 0x80); // RFC 4122 variant
    return uuid;
}

std::string Uuid::string() const {
    static constexpr char hex[] = "0123456789abcdef";
    std::string out;
    out.reserve(36);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) {
            out.push_back('-');
        }
        out.push_back(hex[bytes[i] >> 4]);
        out.push_back(hex[bytes[i] & 0x0F]);
    }
    return out;
}

std::optional<Uuid> Uuid::parse(std::string_view text) {
    if (text.size() != 36) {
        return std::nullopt;
    }
    auto nibble = [](char c) -> int {
        if (c >= '0' && c <= '9') {
            return c - '0';
        }
        if (c >= 'a' && c <= 'f') {
            return c - 'a' + 10;
        }
        if (c >= 'A' && c <= 'F') {
            return c - 'A' + 10;
        }
        return -1;
    };
    Uuid uuid;
    std::size_t at = 0;
    for (std::size_t i = 0; i < uuid.bytes.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) {
            if (text[at++] != '-') {
                return std::nullopt;
            }
        }
        int high = nibble(text[at++]);
        int low = nibble(text[at++]);
        if (high < 0 || low < 0) {
            return std::nullopt;
        }
        uuid.bytes[i] = static_cast<std::uint8_t>(high << 4 | low);
    }
    return uuid;
}

} // namespace lectorbell
