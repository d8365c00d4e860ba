// GoogleTest and Qt come before Xlib, whose macros (None, Bool, Status) break their headers.
// clang-format off
#include <gtest/gtest.h>
#include <QCoreApplication>
#include <QEventLoop>
#include "platform/qt/QtScheduler.hpp"
// clang-format on

#include "TestEnvironment.hpp"
#include "XvfbServer.hpp"
#include "platform/linux/x11/X11HotkeyService.hpp"
#include "platform/linux/x11/XkbKeys.hpp"

#include <X11/XKBlib.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>
#include <vector>

namespace lectorbell::platform::x11 {
namespace {

constexpr HotkeyId readingKeyId = 4;
const KeyCombination readingKey{50, 0};

// The service on a private X server, with keys pressed through XTest as a keyboard would, and a
// focused window standing for the application the user types into.
class X11Hotkeys : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        static int argc = 1;
        static char name[] = "X11HotkeyServiceTests";
        static char* argv[] = {name, nullptr};
        static QCoreApplication app{argc, argv};
        server = lectorbell::testing::XvfbServer::start(800, 600).release();
        display = server != nullptr ? server->client() : nullptr;
    }
    static void TearDownTestSuite() { delete server; }

    void SetUp() override {
        LECTORBELL_REQUIRE_XVFB(server);
        // Repeats start soon and come fast, so a 0.6 s hold repeats many times.
        XkbSetAutoRepeatRate(display, XkbUseCoreKbd, 150, 30);
        focused = XCreateSimpleWindow(display, DefaultRootWindow(display), 10, 10, 200, 100, 0, 0,
                                      0xFFFFFF);
        XSelectInput(display, focused, KeyPressMask | KeyReleaseMask);
        XMapRaised(display, focused);
        XSync(display, False);
        XSetInputFocus(display, focused, RevertToParent, CurrentTime);
        XSync(display, False);
        service = X11HotkeyService::open(scheduler);
        ASSERT_TRUE(service);
        service->setListener([this](const KeyEvent& event) { events.push_back(event); });
        grave = *serverKeycode(display, 50);
    }

    void TearDown() override {
        service.reset();
        if (display != nullptr) {
            XDestroyWindow(display, focused);
            XSync(display, False);
        }
    }

    static unsigned keycodeOf(KeySym symbol) { return XKeysymToKeycode(display, symbol); }

    static void key(unsigned keycode, bool down) {
        XTestFakeKeyEvent(display, keycode, down ? True : False, CurrentTime);
        XSync(display, False);
    }

    // Presses the keys in order, holds them, and lets go in reverse order.
    void chord(const std::vector<unsigned>& keycodes, double holdSeconds = 0.05) {
        for (unsigned keycode : keycodes) {
            key(keycode, true);
        }
        pump(holdSeconds);
        for (auto it = keycodes.rbegin(); it != keycodes.rend(); ++it) {
            key(*it, false);
        }
    }

    // Runs the main queue for a while.
    void pump(double seconds) {
        const double until = scheduler.uptime() + seconds;
        while (scheduler.uptime() < until) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        }
    }

    // Presses of `keycode` the focused window received since the last call.
    static int pressesReachingTheApp(unsigned keycode) {
        int presses = 0;
        XSync(display, False);
        while (XPending(display) > 0) {
            XEvent event;
            XNextEvent(display, &event);
            if (event.type == KeyPress && event.xkey.keycode == keycode) {
                ++presses;
            }
        }
        return presses;
    }

    static inline lectorbell::testing::XvfbServer* server = nullptr;
    static inline ::Display* display = nullptr;
    ::Window focused = 0;
    qt::QtScheduler scheduler;
    std::unique_ptr<X11HotkeyService> service;
    std::vector<KeyEvent> events;
    unsigned grave = 0;
};

TEST_F(X11Hotkeys, AHeldKeyGivesOnePressAndOneReleaseHoweverLongItRepeats) {
    // The server does repeat a held key: a plain grab sees the repeats.
    const unsigned a = *serverKeycode(display, 0);
    XGrabKey(display, static_cast<int>(a), 0, DefaultRootWindow(display), False, GrabModeAsync,
             GrabModeAsync);
    chord({a}, 0.6);
    int repeats = 0;
    XSync(display, False);
    while (XPending(display) > 0) {
        XEvent event;
        XNextEvent(display, &event);
        repeats += event.type == KeyPress && event.xkey.keycode == a ? 1 : 0;
    }
    XUngrabKey(display, static_cast<int>(a), 0, DefaultRootWindow(display));
    ASSERT_GT(repeats, 3);

    ASSERT_EQ(service->registerHotkey(readingKeyId, readingKey), HotkeyRegistration::registered);
    const double before = scheduler.uptime();
    key(grave, true);
    pump(0.6);
    key(grave, false);
    pump(0.2);
    ASSERT_EQ(events.size(), 2U);
    EXPECT_EQ(events[0].id, readingKeyId);
    EXPECT_EQ(events[0].transition, KeyTransition::down);
    EXPECT_EQ(events[1].transition, KeyTransition::up);
    // Dated on the main queue's clock, as held.
    EXPECT_GE(events[0].uptime, before);
    EXPECT_NEAR(events[1].uptime - events[0].uptime, 0.6, 0.1);
    EXPECT_EQ(pressesReachingTheApp(grave), 0);
}

TEST_F(X11Hotkeys, LocksDoNotMatterButOtherModifiersLeaveTheKeyToTheApp) {
    ASSERT_EQ(service->registerHotkey(readingKeyId, readingKey), HotkeyRegistration::registered);
    const unsigned capsLock = keycodeOf(XK_Caps_Lock);
    const unsigned numLock = keycodeOf(XK_Num_Lock);
    struct Case {
        const char* name;
        std::vector<unsigned> locks;
        std::vector<unsigned> held;
        bool ours;
    };
    const Case cases[] = {
        {"alone", {}, {}, true},
        {"CapsLock on", {capsLock}, {}, true},
        {"NumLock on", {numLock}, {}, true},
        {"both locks on", {capsLock, numLock}, {}, true},
        {"Shift types ~", {}, {keycodeOf(XK_Shift_L)}, false},
        {"Ctrl", {}, {keycodeOf(XK_Control_L)}, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        events.clear();
        for (unsigned lock : c.locks) {
            chord({lock});
        }
        pressesReachingTheApp(grave);
        std::vector<unsigned> keys = c.held;
        keys.push_back(grave);
        chord(keys);
        pump(0.1);
        EXPECT_EQ(events.size(), c.ours ? 2U : 0U);
        EXPECT_EQ(pressesReachingTheApp(grave), c.ours ? 0 : 1);
        for (unsigned lock : c.locks) {
            chord({lock}); // off again
        }
    }
}

TEST_F(X11Hotkeys, ModifiedCombinationsMapCommandToSuperAndOptionToAlt) {
    struct Case {
        KeyCombination combination;
        std::vector<KeySym> keys;
    };
    const Case cases[] = {
        {{15, KeyModifier::shift | KeyModifier::command}, {XK_Super_L, XK_Shift_L, XK_r}},
        {{15, KeyModifier::option | KeyModifier::shift | KeyModifier::command},
         {XK_Alt_L, XK_Shift_L, XK_Super_L, XK_r}},
        {{1, KeyModifier::control | KeyModifier::option}, {XK_Control_L, XK_Alt_L, XK_s}},
        {{49, KeyModifier::control}, {XK_Control_L, XK_space}},
        {{19, KeyModifier::command}, {XK_Super_L, XK_2}},
    };
    HotkeyId id = 10;
    for (const Case& c : cases) {
        ++id;
        SCOPED_TRACE(id);
        events.clear();
        ASSERT_EQ(service->registerHotkey(id, c.combination), HotkeyRegistration::registered);
        std::vector<unsigned> keycodes;
        for (KeySym symbol : c.keys) {
            keycodes.push_back(keycodeOf(symbol));
        }
        chord(keycodes);
        // The key alone, without the modifiers, is not ours.
        chord({keycodes.back()});
        pump(0.1);
        ASSERT_EQ(events.size(), 2U);
        EXPECT_EQ(events[0], (KeyEvent{id, KeyTransition::down, events[0].uptime}));
        EXPECT_EQ(events[1].transition, KeyTransition::up);
        service->unregisterHotkey(id);
    }
}

TEST_F(X11Hotkeys, ACombinationAnotherClientHoldsIsTakenAndTheOthersStillRegister) {
    ::Display* other = XOpenDisplay(server->display().c_str());
    ASSERT_NE(other, nullptr);
    XGrabKey(other, static_cast<int>(grave), 0, DefaultRootWindow(other), False, GrabModeAsync,
             GrabModeAsync);
    XSync(other, False);

    EXPECT_EQ(service->registerHotkey(readingKeyId, readingKey), HotkeyRegistration::taken);
    EXPECT_EQ(service->registerHotkey(1, {15, KeyModifier::shift | KeyModifier::command}),
              HotkeyRegistration::registered);
    // Our own combinations clash too, and a key this keyboard lacks is unavailable.
    EXPECT_EQ(service->registerHotkey(2, {15, KeyModifier::shift | KeyModifier::command}),
              HotkeyRegistration::taken);
    EXPECT_EQ(service->registerHotkey(3, {200, 0}), HotkeyRegistration::unavailable);
    EXPECT_EQ(service->registerHotkey(3, {15, 1}), HotkeyRegistration::unavailable);

    // The lock variants that did succeed were given back: once the other client lets go, the
    // key can be had in every lock state.
    XCloseDisplay(other);
    pump(0.05);
    EXPECT_EQ(service->registerHotkey(readingKeyId, readingKey), HotkeyRegistration::registered);
    chord({grave});
    pump(0.1);
    EXPECT_EQ(events.size(), 2U);
}

TEST_F(X11Hotkeys, AnUnregisteredKeyTypesAgain) {
    ASSERT_EQ(service->registerHotkey(readingKeyId, readingKey), HotkeyRegistration::registered);
    service->unregisterHotkey(readingKeyId);
    pressesReachingTheApp(grave);
    chord({grave});
    pump(0.1);
    EXPECT_TRUE(events.empty());
    EXPECT_EQ(pressesReachingTheApp(grave), 1);
}

TEST_F(X11Hotkeys, EventsStillQueuedWhenTheServiceGoesAreDropped) {
    ASSERT_EQ(service->registerHotkey(readingKeyId, readingKey), HotkeyRegistration::registered);
    key(grave, true);
    key(grave, false);
    // Give the event thread time to post, but let the main queue not run.
    const double until = scheduler.uptime() + 0.1;
    while (scheduler.uptime() < until) {
    }
    service.reset();
    pump(0.05);
    EXPECT_TRUE(events.empty());
}

} // namespace
} // namespace lectorbell::platform::x11
