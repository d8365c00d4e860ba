#include "sources/SerialQueue.hpp"

namespace lectorbell {

SerialQueue::SerialQueue()
    : worker_([this] { run(); }) {}

SerialQueue::~SerialQueue() {
    {
        std::lock_guard lock{mutex_};
        stopping_ = true;
    }
    wake_.notify_one();
    worker_.join();
}

void SerialQueue::post(std::function<void()> job) {
    {
        std::lock_guard lock{mutex_};
        jobs_.push_back(std::move(job));
    }
    wake_.notify_one();
}

void SerialQueue::run() {
    for (;;) {
        std::function<void()> job;
        {
            std::unique_lock lock{mutex_};
            wake_.wait(lock, [this] { return stopping_ || !jobs_.empty(); });
            if (jobs_.empty()) {
                return;
            }
            job = std::move(jobs_.front());
            jobs_.pop_front();
        }
        job();
    }
}

} // namespace lectorbell
