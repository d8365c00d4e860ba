#pragma once

#include "lectorbell/OCRRecords.hpp"
#include "lectorbell/PixelBuffer.hpp"
#include "lectorbell/ReadingModel.hpp"
#include "platform/CancelToken.hpp"
#include "platform/ScreenCapturer.hpp"
#include "platform/WindowLocator.hpp"
#include "sources/RecognitionPool.hpp"

#include <chrono>
#include <future>
#include <memory>
#include <mutex>
#include <optional>
#include <variant>

namespace lectorbell::sources {

struct ScreenRecognition {
    std::vector<OCRWord> words;
    std::vector<OCRLine> lines;
    // The captured image, when asked to keep it (for finding a highlight by its colour).
    std::shared_ptr<const PixelBuffer> image;
};
using ScreenOutcome = std::variant<ScreenRecognition, ReadingError, Cancelled>;

// Reads the pixels of the window under the pointer: one still capture, recognised on worker
// threads. Nothing is recorded beyond the last image kept on request.
class ScreenOCR {
public:
    // How long one recognition may take before it gives up: long enough for a large window on a
    // slow machine, short enough that a stuck one never holds a worker for good.
    static constexpr std::chrono::seconds fastDeadline{5};
    static constexpr std::chrono::seconds accurateDeadline{20};

    ScreenOCR(std::shared_ptr<platform::ScreenCapturer> capturer,
              RecognitionPool::RecognizerFactory recognizers, std::size_t workers = 2);

    // One still image of `region` (the whole window when absent).
    std::variant<PixelBuffer, ReadingError> capture(const platform::TargetWindow& window,
                                                    std::optional<ScreenRect> region);
    // Recognition of a captured image on a worker; dark selections are made readable first.
    // A recogniser that cannot start gives textRecognitionUnavailable, naming what to install.
    std::future<ScreenOutcome> recognizeText(std::shared_ptr<const PixelBuffer> image, bool fast,
                                             bool keepImage, CancelToken cancel = {});
    // Capture followed by recognition.
    std::future<ScreenOutcome> recognize(const platform::TargetWindow& window,
                                         std::optional<ScreenRect> region, bool fast,
                                         bool keepImage, CancelToken cancel = {});
    std::future<ScreenOutcome> recognizeWithPixels(const platform::TargetWindow& window,
                                                   std::optional<ScreenRect> region,
                                                   CancelToken cancel = {});
    // The part of the last kept image that covers `area`.
    std::optional<PixelBuffer> pixelBuffer(const ScreenRect& area) const;

private:
    std::shared_ptr<platform::ScreenCapturer> capturer_;
    RecognitionPool pool_;
    mutable std::mutex lastImageMutex_;
    std::shared_ptr<const PixelBuffer> lastImage_;
};

// The words of recognised lines, in line order.
std::vector<OCRWord> wordsOf(const std::vector<OCRLine>& lines);

} // namespace lectorbell::sources
