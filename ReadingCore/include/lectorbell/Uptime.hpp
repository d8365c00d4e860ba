#pragma once

#include <functional>

namespace lectorbell {

// Monotonic uptime in seconds: the one clock that the reading session, the stopwatch and the
// gesture's events are read on. The application hands in its main queue's clock; tests hand in a
// virtual one.
using Uptime = std::function<double()>;

// The system's monotonic clock, in seconds; the main queue's clock reads the same.
double monotonicUptime();

} // namespace lectorbell
