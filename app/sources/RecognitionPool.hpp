#pragma once

#include "platform/TextRecognizer.hpp"

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace lectorbell::sources {

// Worker threads that run text recognition off the main thread. Each worker keeps its own
// recogniser (engines are slow to start and not shared between threads), made on first use.
// Work that is cancelled or past its deadline before a worker takes it is answered without
// running; shutting the pool down drops what is still queued and stops what is running, so a
// huge window never holds up the next reading.
class RecognitionPool {
public:
    using RecognizerFactory = std::function<std::unique_ptr<platform::TextRecognizer>()>;

    RecognitionPool(RecognizerFactory factory, std::size_t workers);
    ~RecognitionPool();
    RecognitionPool(const RecognitionPool&) = delete;
    RecognitionPool& operator=(const RecognitionPool&) = delete;

    std::future<platform::Recognition> recognize(std::shared_ptr<const PixelBuffer> image,
                                                 platform::RecognitionMode mode,
                                                 platform::RecognitionLimits limits);

private:
    struct Job {
        std::shared_ptr<const PixelBuffer> image;
        platform::RecognitionMode mode = platform::RecognitionMode::accurate;
        platform::RecognitionLimits limits;
        std::promise<platform::Recognition> promise;
    };
    void work();
    void run(Job& job, std::unique_ptr<platform::TextRecognizer>& recognizer) const;

    RecognizerFactory factory_;
    // Cancelled on shutdown; every job's recognition also stops on it.
    CancelToken shutdown_;
    std::mutex mutex_;
    std::condition_variable wake_;
    std::deque<Job> jobs_;
    bool stopping_ = false;
    std::vector<std::thread> workers_;
};

} // namespace lectorbell::sources
