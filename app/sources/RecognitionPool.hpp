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
class RecognitionPool {
public:
    using RecognizerFactory = std::function<std::unique_ptr<platform::TextRecognizer>()>;

    RecognitionPool(RecognizerFactory factory, std::size_t workers);
    ~RecognitionPool();
    RecognitionPool(const RecognitionPool&) = delete;
    RecognitionPool& operator=(const RecognitionPool&) = delete;

    std::future<platform::Recognition> recognize(std::shared_ptr<const PixelBuffer> image,
                                                 platform::RecognitionMode mode);

private:
    using Job = std::function<void(platform::TextRecognizer*)>;
    void work();

    RecognizerFactory factory_;
    std::mutex mutex_;
    std::condition_variable wake_;
    std::deque<Job> jobs_;
    bool stopping_ = false;
    std::vector<std::thread> workers_;
};

} // namespace lectorbell::sources
