#include "FakeHotkeyService.hpp"
#include "VirtualScheduler.hpp"
#include "coordinator/HotkeyManager.hpp"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace lectorbell::coordinator {
namespace {

using Slot = HotkeyManager::Slot;
using platform::KeyCombination;

KeyCombination keysOf(const ShortcutCombo& combo) {
    return {combo.keyCode, combo.modifiers};
}

class HotkeyManagerTest : public ::testing::Test {
protected:
    // The shortcuts as a fresh install has them (the stop and answer slots get combinations here
    // so that every slot can be exercised).
    const ShortcutCombo toggle{15, 768, "⇧⌘R"};
    const ShortcutCombo readingKey{50, 0, "` (key below Esc)"};
    const ShortcutCombo pauseKeys{15, 2816, "⌥⇧⌘R"};
    const ShortcutCombo stopKeys{49, 6144, "⌃⌥Space"};
    const ShortcutCombo saveKeys{1, 6144, "⌃⌥S"};
    const ShortcutCombo answerKeys{19, 256, "⌘2"};

    // A binding whose actions record "<slot> down@t" and "<slot> up@t".
    HotkeyManager::Binding binding(Slot slot, std::optional<ShortcutCombo> combo) {
        const std::string name = std::to_string(static_cast<int>(slot));
        auto record = [this, name](const char* what) {
            return [this, name, what](double at) {
                calls.push_back(name + " " + what + "@" + std::to_string(at));
            };
        };
        return {slot, std::move(combo), record("down"),
                slot == Slot::holdKey ? record("up") : HotkeyManager::Action{}};
    }

    std::vector<HotkeyManager::Binding> defaults() {
        return {binding(Slot::save, saveKeys),         binding(Slot::stop, stopKeys),
                binding(Slot::pauseResume, pauseKeys), binding(Slot::aiAnswer, answerKeys),
                binding(Slot::holdKey, readingKey),    binding(Slot::read, toggle)};
    }

    // Presses and lets go of a combination at the clock's time, then moves the clock on.
    void tap(const ShortcutCombo& combo, double thenAdvance = 0.05) {
        keys.press(keysOf(combo), scheduler.uptime());
        keys.letGo(keysOf(combo), scheduler.uptime());
        scheduler.advance(thenAdvance);
    }

    std::size_t count(const std::string& prefix) const {
        return static_cast<std::size_t>(
            std::count_if(calls.begin(), calls.end(),
                          [&](const std::string& c) { return c.starts_with(prefix); }));
    }

    testing::VirtualScheduler scheduler{500.0};
    testing::FakeHotkeyService keys;
    HotkeyManager manager{keys, scheduler};
    std::vector<std::string> calls;
};

TEST_F(HotkeyManagerTest, PressesCloserThanTheDebounceCountOnceExceptForTheReadingKey) {
    struct Case {
        Slot slot;
        ShortcutCombo combo;
        double gap;
        std::size_t presses;
    };
    const Case cases[] = {
        {Slot::read, toggle, 0.25, 1},
        {Slot::read, toggle, 0.35, 2},
        {Slot::pauseResume, pauseKeys, 0.25, 1},
        {Slot::pauseResume, pauseKeys, 0.35, 2},
        {Slot::stop, stopKeys, 0.1, 1},
        {Slot::save, saveKeys, 0.29, 1},
        {Slot::save, saveKeys, 0.31, 2},
        {Slot::aiAnswer, answerKeys, 0.35, 2},
        // The gesture times the reading key's taps itself.
        {Slot::holdKey, readingKey, 0.0, 2},
        {Slot::holdKey, readingKey, 0.05, 2},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(::testing::Message() << static_cast<int>(c.slot) << " gap " << c.gap);
        calls.clear();
        manager.registerAll(defaults());
        scheduler.advance(1.0);
        tap(c.combo, c.gap);
        tap(c.combo);
        EXPECT_EQ(count(std::to_string(static_cast<int>(c.slot)) + " down"), c.presses);
    }
}

TEST_F(HotkeyManagerTest, ThreePressesAtAQuarterSecondAcceptTheFirstAndThird) {
    manager.registerAll(defaults());
    tap(toggle, 0.25);
    tap(toggle, 0.25); // 0.25 after an accepted press: ignored, and the debounce keeps its start
    tap(toggle);       // 0.5 after the accepted one
    EXPECT_EQ(count("1 down"), 2U);
}

TEST_F(HotkeyManagerTest, ActionsGetTheTimeTheKeyMoved) {
    manager.registerAll(defaults());
    keys.press(keysOf(readingKey), 499.75);
    keys.letGo(keysOf(readingKey), 500.5);
    keys.letGo(keysOf(toggle), 500.5); // no release action for the toggle
    EXPECT_EQ(calls, (std::vector<std::string>{"4 down@499.750000", "4 up@500.500000"}));
}

TEST_F(HotkeyManagerTest, RegistersInOrderWhateverOrderTheSettingsCameIn) {
    std::vector<HotkeyManager::Binding> bindings = defaults();
    bindings.push_back(binding(Slot::stop, std::nullopt)); // a second binding for a slot is ignored
    manager.registerAll(std::move(bindings));
    EXPECT_EQ(keys.registrationOrder, (std::vector<platform::HotkeyId>{1, 4, 2, 3, 5, 6}));
    EXPECT_EQ(keys.registered().size(), 6U);
    EXPECT_EQ(manager.problem(), std::nullopt);
}

TEST_F(HotkeyManagerTest, ASlotWithoutASettingEndsUnregistered) {
    manager.registerAll(defaults());
    std::vector<HotkeyManager::Binding> bindings = defaults();
    // No stop shortcut set, and the answer shortcut cleared.
    std::erase_if(bindings, [](const auto& b) { return b.slot == Slot::stop; });
    std::erase_if(bindings, [](const auto& b) { return b.slot == Slot::aiAnswer; });
    bindings.push_back(binding(Slot::aiAnswer, std::nullopt));
    manager.registerAll(std::move(bindings));
    EXPECT_FALSE(manager.isRegistered(Slot::stop));
    EXPECT_FALSE(manager.isRegistered(Slot::aiAnswer));
    EXPECT_FALSE(keys.idOf(keysOf(stopKeys)));
    tap(stopKeys);
    EXPECT_TRUE(calls.empty());
    EXPECT_EQ(manager.problem(), std::nullopt);
}

TEST_F(HotkeyManagerTest, ATakenShortcutNamesItselfAndTheOthersStillWork) {
    struct Case {
        Slot slot;
        ShortcutCombo combo;
        const char* message;
    };
    const Case cases[] = {
        {Slot::holdKey, readingKey, "Reading key ` (key below Esc) is taken by another app"},
        {Slot::pauseResume, pauseKeys, "Pause shortcut ⌥⇧⌘R is taken"},
        {Slot::stop, stopKeys, "Stop shortcut ⌃⌥Space is taken"},
        {Slot::save, saveKeys, "Save shortcut ⌃⌥S is taken"},
        {Slot::read, toggle, "Toggle shortcut ⇧⌘R is taken"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.message);
        testing::FakeHotkeyService service;
        service.takenByOthers = {keysOf(c.combo)};
        HotkeyManager hotkeys{service, scheduler};
        std::vector<std::string> pressed;
        std::vector<HotkeyManager::Binding> bindings;
        for (HotkeyManager::Binding b : defaults()) {
            b.press = [&pressed, slot = b.slot](double) {
                pressed.push_back(std::to_string(static_cast<int>(slot)));
            };
            bindings.push_back(std::move(b));
        }
        hotkeys.registerAll(std::move(bindings));
        EXPECT_EQ(hotkeys.problem(), std::string{c.message});
        EXPECT_FALSE(hotkeys.isRegistered(c.slot));
        EXPECT_EQ(service.registered().size(), 5U);
        for (const ShortcutCombo& other :
             {toggle, readingKey, pauseKeys, stopKeys, saveKeys, answerKeys}) {
            service.press(keysOf(other), scheduler.uptime());
        }
        EXPECT_EQ(pressed.size(), 5U);
        EXPECT_EQ(
            std::find(pressed.begin(), pressed.end(), std::to_string(static_cast<int>(c.slot))),
            pressed.end());
    }
}

TEST_F(HotkeyManagerTest, ChangingOneShortcutReRegistersOnlyThatSlot) {
    int problemChanges = 0;
    manager.onProblemChange = [&] { ++problemChanges; };
    manager.registerAll(defaults());
    keys.registrationOrder.clear();

    // To a combination another application holds: the old registration is already gone.
    const ShortcutCombo taken{35, 4096, "⌃P"};
    keys.takenByOthers = {keysOf(taken)};
    EXPECT_FALSE(manager.registerSlot(binding(Slot::pauseResume, taken)));
    EXPECT_EQ(manager.problem(), std::string{"Pause shortcut ⌃P is taken"});
    EXPECT_FALSE(keys.idOf(keysOf(pauseKeys)));
    tap(pauseKeys);
    tap(toggle);
    EXPECT_EQ(count("2 down"), 0U);
    EXPECT_EQ(count("1 down"), 1U);

    // Then to a free one: the problem is gone.
    const ShortcutCombo free{47, 4096, "⌃."};
    EXPECT_TRUE(manager.registerSlot(binding(Slot::pauseResume, free)));
    EXPECT_EQ(manager.problem(), std::nullopt);
    tap(free);
    EXPECT_EQ(count("2 down"), 1U);
    EXPECT_EQ(keys.registrationOrder, (std::vector<platform::HotkeyId>{2, 2}));
    EXPECT_EQ(problemChanges, 2);
}

TEST_F(HotkeyManagerTest, TheLatestFailureIsShownAndTheEarlierOneReturnsWhenItIsFixed) {
    keys.takenByOthers = {keysOf(readingKey), keysOf(saveKeys)};
    manager.registerAll(defaults());
    EXPECT_EQ(manager.problem(), std::string{"Save shortcut ⌃⌥S is taken"});
    manager.registerSlot(binding(Slot::save, std::nullopt));
    EXPECT_EQ(manager.problem(),
              std::string{"Reading key ` (key below Esc) is taken by another app"});
    keys.takenByOthers.clear();
    manager.registerAll(defaults());
    EXPECT_EQ(manager.problem(), std::nullopt);
}

TEST_F(HotkeyManagerTest, TwoSlotsWithOneCombinationLeaveTheLaterOneOut) {
    std::vector<HotkeyManager::Binding> bindings = defaults();
    std::erase_if(bindings, [](const auto& b) { return b.slot == Slot::stop; });
    bindings.push_back(binding(Slot::stop, toggle));
    manager.registerAll(std::move(bindings));
    EXPECT_TRUE(manager.isRegistered(Slot::read));
    EXPECT_FALSE(manager.isRegistered(Slot::stop));
    EXPECT_EQ(manager.problem(), std::string{"Stop shortcut ⇧⌘R is taken"});
}

TEST_F(HotkeyManagerTest, IdsOfNoSlotAndUnregisteredSlotsAreIgnored) {
    manager.registerAll(defaults());
    manager.fire(0, 1.0);
    manager.fire(7, 1.0);
    manager.release(99, 1.0);
    manager.unregister(Slot::holdKey);
    manager.fire(4, 1.0);
    manager.release(4, 1.0);
    EXPECT_TRUE(calls.empty());
}

TEST_F(HotkeyManagerTest, AnActionMayReRegisterItsOwnSlot) {
    manager.registerAll(defaults());
    HotkeyManager::Binding rebinding = binding(Slot::read, toggle);
    const ShortcutCombo other{35, 4096, "⌃P"};
    rebinding.press = [this, other](double) { manager.registerSlot(binding(Slot::read, other)); };
    manager.registerSlot(std::move(rebinding));
    tap(toggle);
    EXPECT_EQ(keys.idOf(keysOf(other)), std::optional<platform::HotkeyId>{1});
    EXPECT_FALSE(keys.idOf(keysOf(toggle)));
}

TEST(HotkeyManagerLifetime, GoingAwayUnregistersEverySlotAndStopsListening) {
    testing::VirtualScheduler scheduler;
    testing::FakeHotkeyService keys;
    {
        HotkeyManager manager{keys, scheduler};
        manager.registerSlot(
            {Slot::holdKey, ShortcutCombo{50, 0, "`"}, [](double) {}, [](double) {}});
        EXPECT_TRUE(keys.hasListener());
    }
    EXPECT_TRUE(keys.registered().empty());
    EXPECT_FALSE(keys.hasListener());
}

} // namespace
} // namespace lectorbell::coordinator
