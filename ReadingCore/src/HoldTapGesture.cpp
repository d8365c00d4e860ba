#include "lectorbell/HoldTapGesture.hpp"

// Every comparison below keeps the form "elapsed = later − earlier, compared with the limit" on
// purpose: rearranging it (t ≤ up + window) rounds differently and moves the boundary cases.

namespace lectorbell {

using Action = HoldTapGesture::Action;
using Actions = HoldTapGesture::Actions;

HoldTapGesture::HoldTapGesture(bool instantStart, double holdThreshold, double doubleTapWindow)
    : instantStart(instantStart)
    , holdThreshold(holdThreshold)
    , doubleTapWindow(doubleTapWindow) {}

Actions HoldTapGesture::keyDown(double at, bool readingActive) {
    if (isDown) {
        return {};
    }
    const bool wasLatched = latched;
    isDown = true;
    latched = false;
    downAt = at;

    if (wasLatched && readingActive) {
        // The press that ends a hands-free reading; its release must not count as a tap.
        swallowUp = true;
        lastTapUpAt.reset();
        const bool quickThirdTap =
            tripleTapEnabled && secondTapUpAt && at - *secondTapUpAt <= doubleTapWindow;
        secondTapUpAt.reset();
        return {quickThirdTap ? Action::tripleTap() : Action::stop()};
    }

    if (!instantStart) {
        if (lastTapUpAt && at - *lastTapUpAt <= doubleTapWindow) {
            lastTapUpAt.reset();
            secondTap = true;
            return {Action::begin(false)};
        }
        secondTap = false;
        return {Action::begin(true)};
    }

    if (awaitingSecondTap && lastTapUpAt && at - *lastTapUpAt <= doubleTapWindow) {
        awaitingSecondTap = false;
        lastTapUpAt.reset();
        secondTap = true;
        return {Action::continueLatched()};
    }
    awaitingSecondTap = false;
    secondTap = false;
    return {Action::begin(false)};
}

Actions HoldTapGesture::holdTimerFired(double at) {
    // A second press began ungated and a swallowed press stopped the reading: neither has a gate.
    if (isDown && !secondTap && !swallowUp && holdThreshold - timerTolerance <= at - downAt) {
        return {Action::openGate()};
    }
    return {};
}

Actions HoldTapGesture::keyUp(double at) {
    if (!isDown) {
        return {};
    }
    isDown = false;
    if (swallowUp) {
        swallowUp = false;
        return {};
    }
    if (secondTap) {
        // Double tap complete: the reading continues hands-free.
        secondTap = false;
        latched = true;
        secondTapUpAt = at;
        return {};
    }
    const double limit = instantStart ? instantTapMax : holdThreshold;
    if (at - downAt >= limit) {
        return {Action::stop()};
    }
    lastTapUpAt = at;
    if (!instantStart) {
        // The gated reading never became audible, so a single tap stays silent.
        return {Action::stop()};
    }
    awaitingSecondTap = true;
    return {Action::holdForSecondTap()};
}

Actions HoldTapGesture::secondTapWindowExpired(double at) {
    if (!awaitingSecondTap || isDown || !lastTapUpAt) {
        return {};
    }
    if (doubleTapWindow - timerTolerance <= at - *lastTapUpAt) {
        awaitingSecondTap = false;
        return {Action::stop()};
    }
    return {};
}

std::string_view description(Action action) {
    switch (action.kind) {
    case Action::Kind::begin:
        return action.gated ? "begin(gated: true)" : "begin(gated: false)";
    case Action::Kind::openGate:
        return "openGate";
    case Action::Kind::stop:
        return "stop";
    case Action::Kind::holdForSecondTap:
        return "holdForSecondTap";
    case Action::Kind::continueLatched:
        return "continueLatched";
    case Action::Kind::tripleTap:
        return "tripleTap";
    }
    return {};
}

} // namespace lectorbell
