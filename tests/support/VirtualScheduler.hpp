#pragma once

// The main queue for tests: a virtual clock that only moves when the test advances it, and a
// queue of posted tasks that runs when the test says. No test sleeps to wait for a timer.

#include "platform/Scheduler.hpp"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <deque>
#include <mutex>
#include <utility>
#include <vector>

namespace lectorbell::testing {

class VirtualScheduler final : public platform::Scheduler {
public:
    explicit VirtualScheduler(double start = 1000.0)
        : now_(start) {}

    void post(Task task) override {
        std::lock_guard lock{mutex_};
        posted_.push_back(std::move(task));
    }

    platform::TimerHandle after(double seconds, Task task) override {
        auto [handle, run] = guarded(std::move(task));
        timers_.push_back({now_ + std::max(seconds, 0.0), nextOrder_++, std::move(run)});
        return std::move(handle);
    }

    double uptime() const override { return now_; }

    // Runs posted tasks, and those they post, until none is left.
    void runPosted() {
        while (true) {
            Task task;
            {
                std::lock_guard lock{mutex_};
                if (posted_.empty()) {
                    return;
                }
                task = std::move(posted_.front());
                posted_.pop_front();
            }
            task();
        }
    }

    // Moves the clock `seconds` on. Each timer that falls due runs with the clock at its own
    // time, earliest first (ties in the order they were made), with posted work run before it
    // and after the last.
    void advance(double seconds) {
        const double until = now_ + std::max(seconds, 0.0);
        runPosted();
        while (true) {
            auto due = std::min_element(timers_.begin(), timers_.end(), [](auto& a, auto& b) {
                return a.at < b.at || (a.at == b.at && a.order < b.order);
            });
            if (due == timers_.end() || due->at > until) {
                break;
            }
            Timer timer = std::move(*due);
            timers_.erase(due);
            now_ = std::max(now_.load(), timer.at);
            timer.run();
            runPosted();
        }
        now_ = until;
        runPosted();
    }

private:
    struct Timer {
        double at = 0;
        std::uint64_t order = 0;
        Task run;
    };

    std::atomic<double> now_;
    std::mutex mutex_;
    std::deque<Task> posted_;
    std::vector<Timer> timers_;
    std::uint64_t nextOrder_ = 0;
};

} // namespace lectorbell::testing
