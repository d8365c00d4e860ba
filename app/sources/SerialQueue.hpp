#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <future>
#include <mutex>
#include <thread>

namespace lectorbell {

// One worker thread that runs its jobs in order, one at a time. Accessibility lookups run here
// so a slow application never blocks the main thread, and the platform's accessibility client
// (not thread-safe) is only ever used from this one thread.
class SerialQueue {
public:
    SerialQueue();
    ~SerialQueue();
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;

    template <typename Job>
    auto submit(Job job) -> std::future<decltype(job())> {
        using Result = decltype(job());
        auto task = std::make_shared<std::packaged_task<Result()>>(std::move(job));
        std::future<Result> future = task->get_future();
        post([task] { (*task)(); });
        return future;
    }

private:
    void post(std::function<void()> job);
    void run();

    std::mutex mutex_;
    std::condition_variable wake_;
    std::deque<std::function<void()>> jobs_;
    bool stopping_ = false;
    std::thread worker_;
};

} // namespace lectorbell
