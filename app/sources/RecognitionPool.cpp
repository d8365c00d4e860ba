#include "sources/RecognitionPool.hpp"

#include "lectorbell/CoreLog.hpp"

#include <algorithm>
#include <string>
#include <utility>

namespace lectorbell::sources {

namespace {

using platform::Recognition;
using platform::RecognitionFailure;

Recognition stopped(RecognitionFailure::Kind kind, std::string detail) {
    return {{}, RecognitionFailure{kind, std::move(detail), {}}};
}

} // namespace

RecognitionPool::RecognitionPool(RecognizerFactory factory, std::size_t workers)
    : factory_(std::move(factory)) {
    for (std::size_t i = 0; i < std::max<std::size_t>(workers, 1); ++i) {
        workers_.emplace_back([this] { work(); });
    }
}

RecognitionPool::~RecognitionPool() {
    std::deque<Job> dropped;
    {
        std::lock_guard lock{mutex_};
        stopping_ = true;
        dropped.swap(jobs_);
    }
    shutdown_.cancel();
    wake_.notify_all();
    if (!dropped.empty()) {
        coreLog("ocr",
                "recognition: dropped " + std::to_string(dropped.size()) + " queued at shutdown");
    }
    for (Job& job : dropped) {
        job.promise.set_value(stopped(RecognitionFailure::Kind::cancelled, "dropped at shutdown"));
    }
    for (std::thread& worker : workers_) {
        worker.join();
    }
}

std::future<Recognition> RecognitionPool::recognize(std::shared_ptr<const PixelBuffer> image,
                                                    platform::RecognitionMode mode,
                                                    platform::RecognitionLimits limits) {
    Job job{std::move(image), mode, std::move(limits), {}};
    std::future<Recognition> result = job.promise.get_future();
    {
        std::lock_guard lock{mutex_};
        if (stopping_) {
            job.promise.set_value(
                stopped(RecognitionFailure::Kind::cancelled, "the pool is shutting down"));
            return result;
        }
        jobs_.push_back(std::move(job));
    }
    wake_.notify_one();
    return result;
}

void RecognitionPool::run(Job& job, std::unique_ptr<platform::TextRecognizer>& recognizer) const {
    // Work that went stale while it waited is not started.
    if (job.limits.cancel.cancelled() || shutdown_.cancelled()) {
        job.promise.set_value(stopped(RecognitionFailure::Kind::cancelled, "cancelled in queue"));
        return;
    }
    if (job.limits.pastDeadline()) {
        job.promise.set_value(
            stopped(RecognitionFailure::Kind::deadlinePassed, "deadline passed in queue"));
        return;
    }
    if (!recognizer) {
        recognizer = factory_();
    }
    if (!recognizer) {
        job.promise.set_value(
            stopped(RecognitionFailure::Kind::engineUnavailable, "no text recogniser"));
        return;
    }
    platform::RecognitionLimits limits{job.limits.cancel.orWhen(shutdown_), job.limits.deadline};
    job.promise.set_value(recognizer->recognize(*job.image, job.mode, limits));
}

void RecognitionPool::work() {
    std::unique_ptr<platform::TextRecognizer> recognizer;
    for (;;) {
        Job job;
        {
            std::unique_lock lock{mutex_};
            wake_.wait(lock, [this] { return stopping_ || !jobs_.empty(); });
            if (stopping_) {
                return; // what was queued has been answered by the destructor
            }
            job = std::move(jobs_.front());
            jobs_.pop_front();
        }
        run(job, recognizer);
    }
}

} // namespace lectorbell::sources
