#pragma once

#include "platform/Scheduler.hpp"

#include <QObject>

namespace lectorbell::platform::qt {

// The main queue on Qt's event loop: posted tasks are queued calls and timers are precise
// single-shot QTimers, both bound to an object of the thread that made the scheduler, so work
// still queued when the scheduler goes is dropped with it. Make it on the main thread, after the
// QCoreApplication.
class QtScheduler final : public Scheduler {
public:
    QtScheduler() = default;
    QtScheduler(const QtScheduler&) = delete;
    QtScheduler& operator=(const QtScheduler&) = delete;

    void post(Task task) override;
    TimerHandle after(double seconds, Task task) override;
    // The system's monotonic clock, as the reading core's own default reads it.
    double uptime() const override;

private:
    QObject context_;
};

} // namespace lectorbell::platform::qt
