#include "platform/qt/QtScheduler.hpp"

#include <QMetaObject>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <utility>

namespace lectorbell::platform::qt {

void QtScheduler::post(Task task) {
    QMetaObject::invokeMethod(&context_, std::move(task), Qt::QueuedConnection);
}

TimerHandle QtScheduler::after(double seconds, Task task) {
    auto [handle, run] = guarded(std::move(task));
    // Whole milliseconds, rounded up: a timer never fires before its time on the shared clock.
    // QTimer counts in an int; NaN runs at once.
    constexpr double longest = std::numeric_limits<int>::max();
    const double milliseconds = std::clamp(std::ceil(seconds * 1000), 0.0, longest);
    QTimer::singleShot(
        std::chrono::milliseconds{std::isnan(milliseconds) ? 0 : static_cast<int>(milliseconds)},
        Qt::PreciseTimer, &context_, std::move(run));
    return std::move(handle);
}

double QtScheduler::uptime() const {
    return monotonicUptime();
}

} // namespace lectorbell::platform::qt
