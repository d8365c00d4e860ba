#pragma once

#include "coordinator/ShortcutCombo.hpp"
#include "platform/HotkeyService.hpp"
#include "platform/Scheduler.hpp"

#include <array>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace lectorbell::coordinator {

// The application's global shortcuts: registers each slot's combination with the platform's key
// service and turns its key events into the slot's actions. The reading key's presses go
// straight through (the hold-tap gesture times them); every other slot ignores a press that
// comes less than 0.3 s after its last accepted one, so a repeat or a double press never
// toggles twice. Lives on the main queue.
class HotkeyManager {
public:
    // The raw value is the id registered with the key service.
    enum class Slot : platform::HotkeyId {
        read = 1,
        pauseResume = 2,
        stop = 3,
        holdKey = 4,
        save = 5,
        aiAnswer = 6,
    };
    // Registration order: the reading shortcuts first, so they win a clash among our own.
    static constexpr std::array<Slot, 6> registrationOrder{
        Slot::read, Slot::holdKey, Slot::pauseResume, Slot::stop, Slot::save, Slot::aiAnswer};
    static constexpr double debounceSeconds = 0.3;

    // Given the time the key moved, in seconds of the main queue's clock.
    using Action = std::function<void(double uptime)>;

    struct Binding {
        Slot slot = Slot::read;
        // None when the shortcut setting is absent: the slot stays unregistered.
        std::optional<ShortcutCombo> combo;
        Action press;
        // Only the reading key has one.
        Action release;
    };

    // Both must outlive the manager.
    HotkeyManager(platform::HotkeyService& service, platform::Scheduler& scheduler);
    ~HotkeyManager();
    HotkeyManager(const HotkeyManager&) = delete;
    HotkeyManager& operator=(const HotkeyManager&) = delete;

    // Unregisters the slot and drops its actions, then registers the binding's combination when
    // it has one. True when the slot is registered; a failure becomes the problem shown.
    bool registerSlot(Binding binding);
    // Every slot in registration order: those without a binding or a combination end up
    // unregistered.
    void registerAll(std::vector<Binding> bindings);
    void unregister(Slot slot);
    bool isRegistered(Slot slot) const { return actions_.contains(slot); }

    // The latest registration failure that still stands, as the user reads it; none when every
    // shortcut that should be registered is.
    std::optional<std::string> problem() const;
    // Called when `problem()` changes.
    std::function<void()> onProblemChange;

    // "Reading key ` (key below Esc) is taken by another app", "Pause shortcut ⌥⇧⌘R is taken".
    static std::string problemMessage(Slot slot, const std::string& display);

    // The key service's events; ids of no slot are ignored.
    void fire(platform::HotkeyId id, double uptime);
    void release(platform::HotkeyId id, double uptime);

private:
    void setProblem(Slot slot, std::optional<std::string> message);

    platform::HotkeyService& service_;
    platform::Scheduler& scheduler_;
    std::map<Slot, Action> actions_;
    std::map<Slot, Action> releaseActions_;
    std::map<Slot, double> lastFire_;
    // Failures in the order they happened; the last is the one shown.
    std::vector<std::pair<Slot, std::string>> failures_;
};

} // namespace lectorbell::coordinator
