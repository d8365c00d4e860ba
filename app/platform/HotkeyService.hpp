#pragma once

#include <cstdint>
#include <functional>

namespace lectorbell::platform {

// A key combination as the settings store it: a physical key by its platform-neutral code (50
// the key below Esc, 15 R, 1 S, 19 2, 49 Space, 35 P, 47 period) and modifier bits.
struct KeyCombination {
    std::uint32_t keyCode = 0;
    std::uint32_t modifiers = 0;

    friend bool operator==(const KeyCombination&, const KeyCombination&) = default;
};

// The modifier bits of a KeyCombination. On Linux command is the Super key and option is Alt.
namespace KeyModifier {
inline constexpr std::uint32_t command = 256;
inline constexpr std::uint32_t shift = 512;
inline constexpr std::uint32_t option = 2048;
inline constexpr std::uint32_t control = 4096;
inline constexpr std::uint32_t all = command | shift | option | control;
} // namespace KeyModifier

// Chosen by the caller; events name the registration by it.
using HotkeyId = std::uint32_t;

enum class KeyTransition { down, up };

struct KeyEvent {
    HotkeyId id = 0;
    KeyTransition transition = KeyTransition::down;
    // When the key moved, on the main queue's clock.
    double uptime = 0;

    friend bool operator==(const KeyEvent&, const KeyEvent&) = default;
};

enum class HotkeyRegistration {
    registered,
    // Another application (or another of our registrations) holds the combination.
    taken,
    // The combination cannot be had here: no such key on this keyboard, or no display.
    unavailable,
};

// Global key combinations: while registered, a combination reaches us whichever application
// has the focus, and no longer reaches that application. A held key gives one down and one up
// event, however long the keyboard repeats it.
class HotkeyService {
public:
    using Listener = std::function<void(const KeyEvent&)>;

    virtual ~HotkeyService() = default;

    // Receives the events of every registration, on the main queue.
    virtual void setListener(Listener listener) = 0;
    // Registers `combination` under `id`, replacing what `id` held before. Only the exact
    // modifiers are taken: with the reading key registered alone, Shift with it still types.
    virtual HotkeyRegistration registerHotkey(HotkeyId id, KeyCombination combination) = 0;
    // Harmless for an id that holds nothing. A key held at that moment gives no up event.
    virtual void unregisterHotkey(HotkeyId id) = 0;
};

} // namespace lectorbell::platform
