#pragma once

// Platform-neutral key codes and modifier bits on the X keyboard. Codes name physical keys, so
// they are matched through XKB's key names ("TLDE" is the key below Esc on every layout), not
// through the symbols the current layout puts on the keys.

#include <X11/Xlib.h>
#include <cstdint>
#include <optional>
#include <string_view>

namespace lectorbell::platform::x11 {

// The XKB name of the key `keyCode` stands for; none for a code without one here.
std::optional<std::string_view> xkbKeyName(std::uint32_t keyCode);

// The server's key code of that key on the keyboard in use; none when the keyboard has no such
// key or the server has no XKB.
std::optional<unsigned> serverKeycode(::Display* display, std::uint32_t keyCode);

// The X modifier mask for KeyModifier bits: command is Super (Mod4), option is Alt (Mod1). None
// when bits other than the four modifiers are set.
std::optional<unsigned> modifierMask(std::uint32_t modifiers);

// The modifiers a combination is matched with; locks (CapsLock, NumLock) and others are left out.
inline constexpr unsigned matchedModifiers = ShiftMask | ControlMask | Mod1Mask | Mod4Mask;

// The modifier that NumLock sets on this keyboard; 0 when none does.
unsigned numLockMask(::Display* display);

} // namespace lectorbell::platform::x11
