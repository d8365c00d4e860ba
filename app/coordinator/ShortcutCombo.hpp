#pragma once

#include <cstdint>
#include <string>

namespace lectorbell::coordinator {

// The combination a shortcut setting holds: a physical key by its neutral code, the modifier
// bits (command 256, shift 512, option 2048, control 4096) and the text the user sees.
struct ShortcutCombo {
    std::uint32_t keyCode = 0;
    std::uint32_t modifiers = 0;
    std::string display;

    friend bool operator==(const ShortcutCombo&, const ShortcutCombo&) = default;
};

} // namespace lectorbell::coordinator
