#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

namespace lectorbell {

using MonotonicClock = std::function<std::chrono::steady_clock::time_point()>;

// The limits of one tree walk: nodes to visit, characters of leaf text to collect, and a
// deadline. Once any of them runs out the budget stays exhausted.
struct WalkBudget {
    std::int64_t nodes = 0;
    std::int64_t chars = 0;
    std::chrono::steady_clock::time_point deadline;
    bool exhausted = false;

    static constexpr std::int64_t normalNodes = 6000;
    static constexpr std::int64_t normalChars = 200000;
    static constexpr std::chrono::milliseconds normalTime{1500};
    static constexpr std::int64_t quickNodes = 700;
    static constexpr std::int64_t quickChars = 3000;
    static constexpr std::chrono::milliseconds quickTime{120};
    static constexpr std::int64_t probeNodes = 3000;
    static constexpr std::int64_t probeChars = 400000;

    // Spends one node and `textLength` characters; true while the walk may go on.
    bool spend(std::int64_t textLength, std::chrono::steady_clock::time_point now);
};

} // namespace lectorbell
