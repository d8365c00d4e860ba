#pragma once

#include "sources/WalkBudget.hpp"

#include <functional>
#include <string>
#include <string_view>

namespace lectorbell {

// Receives the extractor's one-line diagnostics.
using TraceSink = std::function<void(std::string_view line)>;

// What every step of one lookup shares: the clock, where trace lines go, and whether leaf text
// may appear in them (a developer setting, off by default).
struct WalkContext {
    MonotonicClock clock;
    TraceSink traceSink;
    bool devLogExcerpts = false;

    void trace(std::string_view line) const {
        if (traceSink) {
            traceSink(line);
        }
    }
    std::chrono::steady_clock::time_point now() const { return clock(); }
};

// A number in a trace line, with at most one decimal.
std::string traceNumber(double value);

} // namespace lectorbell
