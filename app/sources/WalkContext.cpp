#include "sources/WalkContext.hpp"

#include <cmath>
#include <cstdio>
#include <thread>

namespace lectorbell {

std::string traceNumber(double value) {
    double rounded = std::round(value * 10) / 10;
    char buffer[32];
    if (rounded == std::floor(rounded)) {
        std::snprintf(buffer, sizeof buffer, "%.0f", rounded);
    } else {
        std::snprintf(buffer, sizeof buffer, "%.1f", rounded);
    }
    return buffer;
}

MonotonicClock steadyClock() {
    return [] { return std::chrono::steady_clock::now(); };
}

Wait sleepingWait() {
    return [](std::chrono::milliseconds duration) { std::this_thread::sleep_for(duration); };
}

} // namespace lectorbell
