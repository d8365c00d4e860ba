#include "coordinator/HotkeyManager.hpp"

#include "lectorbell/CoreLog.hpp"

#include <algorithm>

namespace lectorbell::coordinator {

namespace {

std::optional<HotkeyManager::Slot> slotOf(platform::HotkeyId id) {
    if (id < 1 || id > HotkeyManager::registrationOrder.size()) {
        return std::nullopt;
    }
    return static_cast<HotkeyManager::Slot>(id);
}

// How the user knows each slot in the settings.
const char* labelOf(HotkeyManager::Slot slot) {
    switch (slot) {
    case HotkeyManager::Slot::read:
        return "Toggle shortcut ";
    case HotkeyManager::Slot::pauseResume:
        return "Pause shortcut ";
    case HotkeyManager::Slot::stop:
        return "Stop shortcut ";
    case HotkeyManager::Slot::holdKey:
        return "Reading key ";
    case HotkeyManager::Slot::save:
        return "Save shortcut ";
    case HotkeyManager::Slot::aiAnswer:
        return "Answer shortcut ";
    }
    return "Shortcut ";
}

} // namespace

HotkeyManager::HotkeyManager(platform::HotkeyService& service, platform::Scheduler& scheduler)
    : service_(service)
    , scheduler_(scheduler) {
    service_.setListener([this](const platform::KeyEvent& event) {
        if (event.transition == platform::KeyTransition::down) {
            fire(event.id, event.uptime);
        } else {
            release(event.id, event.uptime);
        }
    });
}

HotkeyManager::~HotkeyManager() {
    service_.setListener({});
    for (Slot slot : registrationOrder) {
        service_.unregisterHotkey(static_cast<platform::HotkeyId>(slot));
    }
}

std::string HotkeyManager::problemMessage(Slot slot, const std::string& display) {
    if (slot == Slot::holdKey) {
        return labelOf(slot) + display + " is taken by another app";
    }
    return labelOf(slot) + display + " is taken";
}

bool HotkeyManager::registerSlot(Binding binding) {
    unregister(binding.slot);
    if (!binding.combo) {
        setProblem(binding.slot, std::nullopt);
        return false;
    }
    const platform::KeyCombination combination{binding.combo->keyCode, binding.combo->modifiers};
    const platform::HotkeyRegistration result =
        service_.registerHotkey(static_cast<platform::HotkeyId>(binding.slot), combination);
    if (result != platform::HotkeyRegistration::registered) {
        coreLog("reading", "hotkeys: slot " +
                               std::to_string(static_cast<platform::HotkeyId>(binding.slot)) +
                               (result == platform::HotkeyRegistration::taken
                                    ? " not registered: taken"
                                    : " not registered: no such key here"));
        setProblem(binding.slot, problemMessage(binding.slot, binding.combo->display));
        return false;
    }
    actions_[binding.slot] = binding.press ? std::move(binding.press) : Action{[](double) {}};
    if (binding.release) {
        releaseActions_[binding.slot] = std::move(binding.release);
    }
    setProblem(binding.slot, std::nullopt);
    return true;
}

void HotkeyManager::registerAll(std::vector<Binding> bindings) {
    for (Slot slot : registrationOrder) {
        auto given = std::find_if(bindings.begin(), bindings.end(),
                                  [slot](const Binding& binding) { return binding.slot == slot; });
        if (given != bindings.end()) {
            registerSlot(std::move(*given));
        } else {
            unregister(slot);
            setProblem(slot, std::nullopt);
        }
    }
}

void HotkeyManager::unregister(Slot slot) {
    service_.unregisterHotkey(static_cast<platform::HotkeyId>(slot));
    actions_.erase(slot);
    releaseActions_.erase(slot);
}

std::optional<std::string> HotkeyManager::problem() const {
    if (failures_.empty()) {
        return std::nullopt;
    }
    return failures_.back().second;
}

void HotkeyManager::setProblem(Slot slot, std::optional<std::string> message) {
    const std::optional<std::string> before = problem();
    std::erase_if(failures_, [slot](const auto& failure) { return failure.first == slot; });
    if (message) {
        failures_.emplace_back(slot, std::move(*message));
    }
    if (problem() != before && onProblemChange) {
        onProblemChange();
    }
}

void HotkeyManager::fire(platform::HotkeyId id, double uptime) {
    std::optional<Slot> slot = slotOf(id);
    auto action = slot ? actions_.find(*slot) : actions_.end();
    if (action == actions_.end()) {
        return;
    }
    if (*slot != Slot::holdKey) {
        const double now = scheduler_.uptime();
        auto last = lastFire_.find(*slot);
        if (last != lastFire_.end() && now - last->second < debounceSeconds) {
            return;
        }
        lastFire_[*slot] = now;
    }
    // A copy: the action may register the slot again.
    Action run = action->second;
    run(uptime);
}

void HotkeyManager::release(platform::HotkeyId id, double uptime) {
    std::optional<Slot> slot = slotOf(id);
    auto action = slot ? releaseActions_.find(*slot) : releaseActions_.end();
    if (action == releaseActions_.end()) {
        return;
    }
    Action run = action->second;
    run(uptime);
}

} // namespace lectorbell::coordinator
