#include "platform/linux/x11/XkbKeys.hpp"

#include "platform/HotkeyService.hpp"

#include <X11/XKBlib.h>
#include <X11/keysym.h>
#include <array>
#include <cstring>
#include <utility>

namespace lectorbell::platform::x11 {

namespace {

// The keys of the main block by their neutral codes (the codes of an ANSI keyboard's keys).
// The ISO keyboard's key below Esc (10) is the same key as ANSI's key below Esc on a PC keyboard.
constexpr std::array<std::pair<std::uint32_t, std::string_view>, 51> keyNames{{
    {0, "AC01"},  {1, "AC02"},  {2, "AC03"},  {3, "AC04"},  {4, "AC06"},  {5, "AC05"},
    {6, "AB01"},  {7, "AB02"},  {8, "AB03"},  {9, "AB04"},  {10, "TLDE"}, {11, "AB05"},
    {12, "AD01"}, {13, "AD02"}, {14, "AD03"}, {15, "AD04"}, {16, "AD06"}, {17, "AD05"},
    {18, "AE01"}, {19, "AE02"}, {20, "AE03"}, {21, "AE04"}, {22, "AE06"}, {23, "AE05"},
    {24, "AE12"}, {25, "AE09"}, {26, "AE07"}, {27, "AE11"}, {28, "AE08"}, {29, "AE10"},
    {30, "AD12"}, {31, "AD09"}, {32, "AD07"}, {33, "AD11"}, {34, "AD08"}, {35, "AD10"},
    {36, "RTRN"}, {37, "AC09"}, {38, "AC07"}, {39, "AC11"}, {40, "AC08"}, {41, "AC10"},
    {42, "BKSL"}, {43, "AB08"}, {44, "AB10"}, {45, "AB06"}, {46, "AB07"}, {47, "AB09"},
    {48, "TAB"},  {49, "SPCE"}, {50, "TLDE"},
}};

} // namespace

std::optional<std::string_view> xkbKeyName(std::uint32_t keyCode) {
    for (const auto& [code, name] : keyNames) {
        if (code == keyCode) {
            return name;
        }
    }
    return std::nullopt;
}

std::optional<unsigned> serverKeycode(::Display* display, std::uint32_t keyCode) {
    std::optional<std::string_view> wanted = xkbKeyName(keyCode);
    if (!wanted) {
        return std::nullopt;
    }
    XkbDescPtr keyboard = XkbGetMap(display, 0, XkbUseCoreKbd);
    if (keyboard == nullptr) {
        return std::nullopt;
    }
    std::optional<unsigned> found;
    if (XkbGetNames(display, XkbKeyNamesMask, keyboard) == Success && keyboard->names != nullptr &&
        keyboard->names->keys != nullptr) {
        for (unsigned code = keyboard->min_key_code; code <= keyboard->max_key_code; ++code) {
            // Names are four characters, padded with NULs when shorter.
            const char* name = keyboard->names->keys[code].name;
            const std::string_view stored{name, strnlen(name, XkbKeyNameLength)};
            if (stored == *wanted) {
                found = code;
                break;
            }
        }
    }
    XkbFreeKeyboard(keyboard, 0, True);
    return found;
}

std::optional<unsigned> modifierMask(std::uint32_t modifiers) {
    if ((modifiers & ~KeyModifier::all) != 0) {
        return std::nullopt;
    }
    unsigned mask = 0;
    mask |= (modifiers & KeyModifier::command) != 0 ? Mod4Mask : 0U;
    mask |= (modifiers & KeyModifier::shift) != 0 ? ShiftMask : 0U;
    mask |= (modifiers & KeyModifier::option) != 0 ? Mod1Mask : 0U;
    mask |= (modifiers & KeyModifier::control) != 0 ? ControlMask : 0U;
    return mask;
}

unsigned numLockMask(::Display* display) {
    const KeyCode numLock = XKeysymToKeycode(display, XK_Num_Lock);
    XModifierKeymap* map = XGetModifierMapping(display);
    if (map == nullptr) {
        return 0;
    }
    unsigned mask = 0;
    for (int modifier = 0; modifier < 8 && numLock != 0; ++modifier) {
        for (int i = 0; i < map->max_keypermod; ++i) {
            if (map->modifiermap[modifier * map->max_keypermod + i] == numLock) {
                mask = 1U << static_cast<unsigned>(modifier);
            }
        }
    }
    XFreeModifiermap(map);
    return mask;
}

} // namespace lectorbell::platform::x11
