#include "lectorbell/HoldTapGesture.hpp"

#include <gtest/gtest.h>
#include <ostream>
#include <string>
#include <vector>

namespace lectorbell {

void PrintTo(const HoldTapGesture::Action& action, std::ostream* os) {
    *os << description(action);
}

namespace {

using Action = HoldTapGesture::Action;
using Actions = HoldTapGesture::Actions;

// readingEnds: the reading stops by itself (nothing is sent to the gesture).
enum class Event { down, up, hold, window, readingEnds };

struct Step {
    Event event;
    double at;
    Actions expected;
};

struct Case {
    const char* name;
    bool tripleTaps;
    std::vector<Step> steps;
};

const Actions none{};
const Actions beginGated{Action::begin(true)};
const Actions beginUngated{Action::begin(false)};
const Actions openGate{Action::openGate()};
const Actions stop{Action::stop()};
const Actions holdForSecondTap{Action::holdForSecondTap()};
const Actions continueLatched{Action::continueLatched()};
const Actions tripleTap{Action::tripleTap()};

// Drives the gesture the way the coordinator does: a reading is active from begin or
// continueLatched until stop or tripleTap.
void run(const Case& c, bool instantStart) {
    SCOPED_TRACE(c.name);
    HoldTapGesture gesture{instantStart};
    gesture.tripleTapEnabled = c.tripleTaps;
    bool readingActive = false;
    for (std::size_t i = 0; i < c.steps.size(); ++i) {
        const Step& step = c.steps[i];
        SCOPED_TRACE("step " + std::to_string(i) + " at " + std::to_string(step.at));
        Actions actions;
        switch (step.event) {
        case Event::down:
            actions = gesture.keyDown(step.at, readingActive);
            break;
        case Event::up:
            actions = gesture.keyUp(step.at);
            break;
        case Event::hold:
            actions = gesture.holdTimerFired(step.at);
            break;
        case Event::window:
            actions = gesture.secondTapWindowExpired(step.at);
            break;
        case Event::readingEnds:
            readingActive = false;
            break;
        }
        EXPECT_EQ(actions, step.expected);
        for (const Action& action : actions) {
            using Kind = Action::Kind;
            if (action.kind == Kind::begin || action.kind == Kind::continueLatched) {
                readingActive = true;
            } else if (action.kind == Kind::stop || action.kind == Kind::tripleTap) {
                readingActive = false;
            }
        }
    }
}

using E = Event;

// One gesture per row, as the user would describe it.
// clang-format off
TEST(HoldTapGesture, DefaultMode) {
    const Case cases[] = {
        {"hold", false, {{E::down, 0, beginGated}, {E::hold, 0.15, openGate}, {E::up, 1, stop}}},
        {"hold timer early within tolerance", false,
         {{E::down, 0, beginGated}, {E::hold, 0.149, openGate}, {E::up, 0.5, stop}}},
        {"hold timer too early", false,
         {{E::down, 0, beginGated}, {E::hold, 0.14, none}, {E::up, 0.5, stop}}},
        {"single quick tap is silent", false,
         {{E::down, 0, beginGated}, {E::up, 0.1, stop}, {E::hold, 0.15, none}}},
        {"release at exactly the threshold is a hold, not a tap", false,
         {{E::down, 0, beginGated}, {E::up, 0.15, stop}, {E::down, 0.3, beginGated}}},
        {"double tap latches, the next tap stops", false,
         {{E::down, 0, beginGated}, {E::up, 0.1, stop}, {E::down, 0.2, beginUngated},
          {E::hold, 0.35, none}, {E::up, 0.3, none}, {E::down, 1, stop}, {E::hold, 1.15, none},
          {E::up, 1.2, none}, {E::down, 2, beginGated}}},
        {"gap equal to the window is a double tap", false,
         {{E::down, 0, beginGated}, {E::up, 0.1, stop}, {E::down, 0.45, beginUngated}}},
        {"gap of 0.36 is a new press", false,
         {{E::down, 0, beginGated}, {E::up, 0.1, stop}, {E::down, 0.46, beginGated}}},
        {"auto-repeat is ignored and keeps the press time", false,
         {{E::down, 0, beginGated}, {E::down, 0.1, none}, {E::up, 0.2, stop},
          {E::down, 0.3, beginGated}}},
        {"release without press", false, {{E::up, 0.5, none}, {E::down, 0.6, beginGated}}},
        {"latched reading that ended by itself starts anew", false,
         {{E::down, 0, beginGated}, {E::up, 0.1, stop}, {E::down, 0.2, beginUngated},
          {E::up, 0.3, none}, {E::readingEnds, 5, none}, {E::down, 6, beginGated},
          {E::hold, 6.15, openGate}, {E::up, 7, stop}}},
        {"quick third tap", true,
         {{E::down, 0, beginGated}, {E::up, 0.1, stop}, {E::down, 0.2, beginUngated},
          {E::up, 0.3, none}, {E::down, 0.5, tripleTap}, {E::up, 0.6, none},
          {E::down, 1, beginGated}}},
        {"slow third tap stops", true,
         {{E::down, 0, beginGated}, {E::up, 0.1, stop}, {E::down, 0.2, beginUngated},
          {E::up, 0.3, none}, {E::down, 0.7, stop}}},
        {"quick third tap without triple taps stops", false,
         {{E::down, 0, beginGated}, {E::up, 0.1, stop}, {E::down, 0.2, beginUngated},
          {E::up, 0.3, none}, {E::down, 0.5, stop}}},
        {"window expiry means nothing without instant start", false,
         {{E::down, 0, beginGated}, {E::up, 0.1, stop}, {E::window, 0.45, none}}},
    };
    for (const Case& c : cases) {
        run(c, false);
    }
}

TEST(HoldTapGesture, InstantMode) {
    const Case cases[] = {
        {"hold", false, {{E::down, 0, beginUngated}, {E::up, 0.3, stop}}},
        {"quick tap waits for a second tap", false,
         {{E::down, 0, beginUngated}, {E::up, 0.29, holdForSecondTap}, {E::window, 0.64, stop},
          {E::window, 0.7, none}}},
        {"window timer early within tolerance", false,
         {{E::down, 0, beginUngated}, {E::up, 0.1, holdForSecondTap}, {E::window, 0.446, stop}}},
        {"window timer too early", false,
         {{E::down, 0, beginUngated}, {E::up, 0.1, holdForSecondTap}, {E::window, 0.44, none},
          {E::window, 0.45, stop}}},
        {"double tap latches, the next tap stops", false,
         {{E::down, 0, beginUngated}, {E::up, 0.1, holdForSecondTap},
          {E::down, 0.45, continueLatched}, {E::window, 0.45, none}, {E::up, 0.5, none},
          {E::down, 1, stop}, {E::up, 1.1, none}, {E::down, 2, beginUngated}}},
        {"gap of 0.36 is a new reading", false,
         {{E::down, 0, beginUngated}, {E::up, 0.1, holdForSecondTap},
          {E::down, 0.46, beginUngated}, {E::window, 0.46, none}, {E::up, 1, stop}}},
        {"quick third tap", true,
         {{E::down, 0, beginUngated}, {E::up, 0.1, holdForSecondTap},
          {E::down, 0.2, continueLatched}, {E::up, 0.3, none}, {E::down, 0.6, tripleTap},
          {E::up, 0.7, none}}},
    };
    for (const Case& c : cases) {
        run(c, true);
    }
}
// clang-format on

TEST(HoldTapGesture, StartsWithTheGivenTimings) {
    HoldTapGesture gesture{true, 0.2, 0.4};
    EXPECT_TRUE(gesture.instantStart);
    EXPECT_FALSE(gesture.tripleTapEnabled);
    EXPECT_EQ(gesture.holdThreshold, 0.2);
    EXPECT_EQ(gesture.doubleTapWindow, 0.4);
    EXPECT_EQ(gesture.instantTapMax, 0.3);
    EXPECT_FALSE(gesture.isDown || gesture.latched || gesture.secondTap || gesture.swallowUp);
    EXPECT_FALSE(gesture.lastTapUpAt || gesture.secondTapUpAt);

    HoldTapGesture standard{false};
    EXPECT_EQ(standard.holdThreshold, 0.15);
    EXPECT_EQ(standard.doubleTapWindow, 0.35);
}

TEST(HoldTapGesture, Descriptions) {
    EXPECT_EQ(description(Action::begin(true)), "begin(gated: true)");
    EXPECT_EQ(description(Action::begin(false)), "begin(gated: false)");
    EXPECT_EQ(description(Action::openGate()), "openGate");
    EXPECT_EQ(description(Action::stop()), "stop");
    EXPECT_EQ(description(Action::holdForSecondTap()), "holdForSecondTap");
    EXPECT_EQ(description(Action::continueLatched()), "continueLatched");
    EXPECT_EQ(description(Action::tripleTap()), "tripleTap");
}

} // namespace
} // namespace lectorbell
