#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace lectorbell {

// Turns presses and releases of the reading key into reading commands: hold to read while held,
// double-tap to keep reading until the next tap, a single quick tap stays silent.
//
// A plain value with no timers and no clock: the owner passes every event's time stamp (seconds
// on one monotonic clock), runs the hold timer (holdThreshold after a press) and the second-tap
// timer (doubleTapWindow after a quick tap's release), and carries out the returned actions.
struct HoldTapGesture {
    struct Action {
        enum class Kind { begin, openGate, stop, holdForSecondTap, continueLatched, tripleTap };

        Kind kind = Kind::stop;
        // Only meaningful for begin: the reading is prepared but silent until openGate.
        bool gated = false;

        static constexpr Action begin(bool gated) { return {Kind::begin, gated}; }
        static constexpr Action openGate() { return {Kind::openGate, false}; }
        static constexpr Action stop() { return {Kind::stop, false}; }
        static constexpr Action holdForSecondTap() { return {Kind::holdForSecondTap, false}; }
        static constexpr Action continueLatched() { return {Kind::continueLatched, false}; }
        static constexpr Action tripleTap() { return {Kind::tripleTap, false}; }

        friend bool operator==(const Action&, const Action&) = default;
    };
    // Empty or one action.
    using Actions = std::vector<Action>;

    // Timers may fire a little early; a timer scheduled for exactly the threshold must never be
    // rejected because of floating-point error, so both timer checks accept this much less.
    static constexpr double timerTolerance = 0.005;

    // Times are seconds; the optional ones are unset when no such event is pending.
    bool tripleTapEnabled = false;
    std::optional<double> secondTapUpAt;
    bool instantStart;
    bool awaitingSecondTap = false;
    double holdThreshold;
    double doubleTapWindow;
    double instantTapMax = 0.3;
    bool isDown = false;
    bool latched = false;
    double downAt = 0;
    std::optional<double> lastTapUpAt;
    bool secondTap = false;
    bool swallowUp = false;

    explicit HoldTapGesture(bool instantStart, double holdThreshold = 0.15,
                            double doubleTapWindow = 0.35);

    // readingActive: a reading is preparing, speaking or paused. Auto-repeat presses (while the
    // key is already down) are ignored.
    Actions keyDown(double at, bool readingActive);
    Actions keyUp(double at);
    Actions holdTimerFired(double at);
    Actions secondTapWindowExpired(double at);
};

// "begin(gated: true)", "openGate", "stop", …: the action as the gesture verb and logs print it.
std::string_view description(HoldTapGesture::Action action);

} // namespace lectorbell
