#pragma once

#include "lectorbell/Uptime.hpp"

#include <functional>
#include <memory>
#include <utility>

namespace lectorbell::platform {

// A task scheduled to run later on the main queue. Destroying the handle cancels the task, so a
// timer kept as a member dies with its owner and never calls into a destroyed object.
class TimerHandle {
public:
    // Shared by the handle and the scheduler that holds the task.
    struct State {
        bool cancelled = false;
        bool ran = false;
    };

    TimerHandle() = default;
    explicit TimerHandle(std::shared_ptr<State> state);
    ~TimerHandle();
    TimerHandle(TimerHandle&& other) noexcept = default;
    // Cancels the task this handle held before taking the other's.
    TimerHandle& operator=(TimerHandle&& other) noexcept;
    TimerHandle(const TimerHandle&) = delete;
    TimerHandle& operator=(const TimerHandle&) = delete;

    // The task will not run; harmless once it has run or when there is none.
    void cancel();
    // True while the task waits to run.
    bool pending() const;

private:
    std::shared_ptr<State> state_;
};

// The main queue: the one thread that owns the coordinator, the session and the gesture, and
// the one clock they read.
class Scheduler {
public:
    using Task = std::function<void()>;

    virtual ~Scheduler() = default;

    // Runs `task` on the main queue after the work already queued. Safe from any thread.
    virtual void post(Task task) = 0;
    // Runs `task` on the main queue `seconds` from now (at once for zero or less), unless the
    // handle is cancelled or destroyed first. Call it on the main queue.
    [[nodiscard]] virtual TimerHandle after(double seconds, Task task) = 0;
    // Monotonic seconds. Safe from any thread.
    virtual double uptime() const = 0;

    // The clock as a function, for the reading core's session and stopwatch; it reads this
    // scheduler, so it must not outlive it.
    Uptime clock() const {
        return [this] { return uptime(); };
    }

protected:
    // A new timer's handle, and `task` wrapped to run only while that handle has not cancelled it.
    static std::pair<TimerHandle, Task> guarded(Task task);
};

} // namespace lectorbell::platform
