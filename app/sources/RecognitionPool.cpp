#include "sources/RecognitionPool.hpp"

#include <algorithm>
#include <utility>

namespace lectorbell::sources {

RecognitionPool::RecognitionPool(RecognizerFactory factory, std::size_t workers)
    : factory_(std::move(factory)) {
    for (std::size_t i = 0; i < std::max<std::size_t>(workers, 1); ++i) {
        workers_.emplace_back([this] { work(); });
    }
}

RecognitionPool::~RecognitionPool() {
    {
        std::lock_guard lock{mutex_};
        stopping_ = true;
    }
    wake_.notify_all();
    for (std::thread& worker : workers_) {
        worker.join();
    }
}

std::future<platform::Recognition>
RecognitionPool::recognize(std::shared_ptr<const PixelBuffer> image,
                           platform::RecognitionMode mode) {
    auto promise = std::make_shared<std::promise<platform::Recognition>>();
    std::future<platform::Recognition> result = promise->get_future();
    {
        std::lock_guard lock{mutex_};
        jobs_.emplace_back([promise, image = std::move(image), mode](platform::TextRecognizer* r) {
            promise->set_value(r != nullptr ? r->recognize(*image, mode)
                                            : platform::Recognition{{}, "no text recogniser"});
        });
    }
    wake_.notify_one();
    return result;
}

void RecognitionPool::work() {
    std::unique_ptr<platform::TextRecognizer> recognizer;
    for (;;) {
        Job job;
        {
            std::unique_lock lock{mutex_};
            wake_.wait(lock, [this] { return stopping_ || !jobs_.empty(); });
            if (jobs_.empty()) {
                return; // stopping, and nothing left to do
            }
            job = std::move(jobs_.front());
            jobs_.pop_front();
        }
        if (!recognizer) {
            recognizer = factory_();
        }
        job(recognizer.get());
    }
}

} // namespace lectorbell::sources
