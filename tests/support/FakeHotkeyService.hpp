#pragma once

// A key service for tests: registrations in a map, combinations "held by other applications"
// chosen by the test, and key events sent by the test straight to the listener.

#include "platform/HotkeyService.hpp"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace lectorbell::testing {

class FakeHotkeyService final : public platform::HotkeyService {
public:
    void setListener(Listener listener) override { listener_ = std::move(listener); }

    platform::HotkeyRegistration registerHotkey(platform::HotkeyId id,
                                                platform::KeyCombination combination) override {
        registrationOrder.push_back(id);
        registered_.erase(id);
        const bool heldElsewhere = std::find(takenByOthers.begin(), takenByOthers.end(),
                                             combination) != takenByOthers.end();
        const bool heldByUs =
            std::any_of(registered_.begin(), registered_.end(),
                        [&](const auto& entry) { return entry.second == combination; });
        if (heldElsewhere || heldByUs) {
            return platform::HotkeyRegistration::taken;
        }
        registered_[id] = combination;
        return platform::HotkeyRegistration::registered;
    }

    void unregisterHotkey(platform::HotkeyId id) override { registered_.erase(id); }

    // The id registered for a combination, if any.
    std::optional<platform::HotkeyId> idOf(platform::KeyCombination combination) const {
        for (const auto& [id, held] : registered_) {
            if (held == combination) {
                return id;
            }
        }
        return std::nullopt;
    }

    // The user presses or lets go of a combination; nothing happens unless it is registered.
    void press(platform::KeyCombination combination, double uptime) {
        send(combination, platform::KeyTransition::down, uptime);
    }
    void letGo(platform::KeyCombination combination, double uptime) {
        send(combination, platform::KeyTransition::up, uptime);
    }

    const std::map<platform::HotkeyId, platform::KeyCombination>& registered() const {
        return registered_;
    }
    bool hasListener() const { return static_cast<bool>(listener_); }

    // Combinations another application holds: registering them fails as taken.
    std::vector<platform::KeyCombination> takenByOthers;
    // Every id asked for, in order.
    std::vector<platform::HotkeyId> registrationOrder;

private:
    void send(platform::KeyCombination combination, platform::KeyTransition transition,
              double uptime) {
        std::optional<platform::HotkeyId> id = idOf(combination);
        if (id && listener_) {
            listener_(platform::KeyEvent{*id, transition, uptime});
        }
    }

    Listener listener_;
    std::map<platform::HotkeyId, platform::KeyCombination> registered_;
};

} // namespace lectorbell::testing
