#pragma once

#include "platform/CancelToken.hpp"
#include "sources/WalkBudget.hpp"

#include <chrono>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace lectorbell {

// Receives the extractor's one-line diagnostics.
using TraceSink = std::function<void(std::string_view line)>;
// Blocks the lookup's thread for a while.
using Wait = std::function<void(std::chrono::milliseconds)>;

// The real clock and wait, for lookups of running applications.
MonotonicClock steadyClock();
Wait sleepingWait();

// What every step of one lookup shares: the clock and how to wait on it, where trace lines go,
// whether leaf text may appear in them (a developer setting, off by default), and whether the
// lookup is still wanted.
struct WalkContext {
    // Pauses (after asking an application to build its tree) go through `wait`, so that tests
    // advance their virtual clock instead of sleeping.
    WalkContext(MonotonicClock clock, TraceSink traceSink, bool devLogExcerpts = false,
                Wait wait = sleepingWait())
        : clock(std::move(clock))
        , traceSink(std::move(traceSink))
        , devLogExcerpts(devLogExcerpts)
        , wait(std::move(wait)) {}

    MonotonicClock clock;
    TraceSink traceSink;
    bool devLogExcerpts = false;
    Wait wait;
    // The current lookup's; checked between calls into the application.
    CancelToken cancel;

    void trace(std::string_view line) const {
        if (traceSink) {
            traceSink(line);
        }
    }
    std::chrono::steady_clock::time_point now() const { return clock(); }
    void pause(std::chrono::milliseconds duration) const { wait(duration); }
    bool cancelled() const { return cancel.cancelled(); }
};

// A number in a trace line, with at most one decimal.
std::string traceNumber(double value);

} // namespace lectorbell
