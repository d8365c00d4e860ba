#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace lectorbell::coordinator {

// A stored shortcut. `keyCode` names a physical key by its platform-neutral code (15 R, 1 S,
// 19 2, 35 P, 47 period, 49 Space, 50 the key below Esc); `modifiers` holds the modifier bits
// below. On Linux, command is the Super key and option is Alt.
struct HotkeyCombo {
    std::uint32_t keyCode = 0;
    std::uint32_t modifiers = 0;
    std::string display;

    friend bool operator==(const HotkeyCombo&, const HotkeyCombo&) = default;
};

namespace HotkeyModifier {
inline constexpr std::uint32_t command = 256;
inline constexpr std::uint32_t shift = 512;
inline constexpr std::uint32_t option = 2048;
inline constexpr std::uint32_t control = 4096;
} // namespace HotkeyModifier

namespace HotkeyKey {
inline constexpr std::uint32_t s = 1;
inline constexpr std::uint32_t isoBelowEsc = 10;
inline constexpr std::uint32_t r = 15;
inline constexpr std::uint32_t two = 19;
inline constexpr std::uint32_t p = 35;
inline constexpr std::uint32_t period = 47;
inline constexpr std::uint32_t space = 49;
inline constexpr std::uint32_t belowEsc = 50;
} // namespace HotkeyKey

// What Linux shows for a combination: "Ctrl+Alt+S", "Alt+Shift+Super+R", "Super+2", and for the
// reading key alone "` (key below Esc)". A key code without a name shows as "Key <code>".
std::string linuxDisplay(std::uint32_t keyCode, std::uint32_t modifiers);
inline HotkeyCombo hotkeyCombo(std::uint32_t keyCode, std::uint32_t modifiers) {
    return {keyCode, modifiers, linuxDisplay(keyCode, modifiers)};
}

// The stored form: {"keyCode": 15, "modifiers": 768, "display": "Shift+Super+R"}.
std::string encodeHotkey(const HotkeyCombo& combo);
// No value unless all three keys are there with their types and the codes fit 32 bits;
// `whyNot` then says what is wrong.
std::optional<HotkeyCombo> decodeHotkey(std::string_view json, std::string* whyNot = nullptr);

} // namespace lectorbell::coordinator
