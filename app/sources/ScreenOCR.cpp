#include "sources/ScreenOCR.hpp"

#include "lectorbell/CoreLog.hpp"
#include "lectorbell/ScreenBands.hpp"

#include <string>
#include <utility>

namespace lectorbell::sources {

namespace {

std::string describe(const ScreenRect& r) {
    return std::to_string(static_cast<long>(r.x())) + "," +
           std::to_string(static_cast<long>(r.y())) + " " +
           std::to_string(static_cast<long>(r.width())) + "x" +
           std::to_string(static_cast<long>(r.height()));
}

ReadingError errorFor(const platform::CaptureFailure& failure) {
    using Kind = platform::CaptureFailure::Kind;
    coreLog("ocr", "capture: failed (" + failure.detail + ")");
    return ReadingError{failure.kind == Kind::noScreenAccess
                            ? ReadingError::Kind::screenCapturePermissionNeeded
                            : ReadingError::Kind::ocrFoundNothing};
}

ScreenOutcome outcomeOf(const platform::Recognition& result,
                        const std::shared_ptr<const PixelBuffer>& image, bool keepImage) {
    using Kind = platform::RecognitionFailure::Kind;
    if (!result.failure) {
        return ScreenRecognition{wordsOf(result.lines), result.lines, keepImage ? image : nullptr};
    }
    const platform::RecognitionFailure& failure = *result.failure;
    if (failure.kind == Kind::cancelled) {
        // Whoever cancelled logs it, once for the whole lookup.
        return Cancelled{};
    }
    coreLog("ocr", "recognition: failed (" + failure.detail + ")");
    if (failure.kind == Kind::engineUnavailable && !failure.missingPackage.empty()) {
        return ReadingError::textRecognitionUnavailable(failure.missingPackage);
    }
    return ReadingError{ReadingError::Kind::ocrFoundNothing};
}

} // namespace

std::vector<OCRWord> wordsOf(const std::vector<OCRLine>& lines) {
    std::vector<OCRWord> words;
    for (const OCRLine& line : lines) {
        words.insert(words.end(), line.words.begin(), line.words.end());
    }
    return words;
}

ScreenOCR::ScreenOCR(std::shared_ptr<platform::ScreenCapturer> capturer,
                     RecognitionPool::RecognizerFactory recognizers, std::size_t workers)
    : capturer_(std::move(capturer))
    , pool_(std::move(recognizers), workers) {}

std::variant<PixelBuffer, ReadingError> ScreenOCR::capture(const platform::TargetWindow& window,
                                                           std::optional<ScreenRect> region) {
    if (!capturer_) {
        return ReadingError{ReadingError::Kind::screenCapturePermissionNeeded};
    }
    ScreenRect area = region.value_or(window.frame);
    coreLog("ocr",
            "capture: window=" + std::to_string(window.windowID) + " area=" + describe(area));
    platform::CaptureResult result = capturer_->capture(area);
    if (const auto* failure = std::get_if<platform::CaptureFailure>(&result)) {
        return errorFor(*failure);
    }
    auto& image = std::get<PixelBuffer>(result);
    coreLog("ocr", "capture: image " + std::to_string(image.width) + "x" +
                       std::to_string(image.height) + " px, area=" + describe(image.area));
    return std::move(image);
}

std::future<ScreenOutcome> ScreenOCR::recognizeText(std::shared_ptr<const PixelBuffer> image,
                                                    bool fast, bool keepImage, CancelToken cancel) {
    // White text on a dark highlight vanishes in recognition unless it is turned dark on light.
    auto readable = std::make_shared<PixelBuffer>(*image);
    if (ScreenBands::invertDarkSelections(*readable) == 0) {
        readable.reset();
    }
    std::shared_ptr<const PixelBuffer> forRecognition = readable ? readable : image;
    if (keepImage) {
        std::lock_guard lock{lastImageMutex_};
        lastImage_ = image;
    }
    const auto deadline =
        std::chrono::steady_clock::now() + (fast ? fastDeadline : accurateDeadline);
    std::shared_future<platform::Recognition> recognition =
        pool_
            .recognize(forRecognition,
                       fast ? platform::RecognitionMode::fast : platform::RecognitionMode::accurate,
                       {std::move(cancel), deadline})
            .share();
    return std::async(std::launch::deferred, [recognition, image = std::move(image), keepImage] {
        return outcomeOf(recognition.get(), image, keepImage);
    });
}

std::future<ScreenOutcome> ScreenOCR::recognize(const platform::TargetWindow& window,
                                                std::optional<ScreenRect> region, bool fast,
                                                bool keepImage, CancelToken cancel) {
    std::variant<PixelBuffer, ReadingError> captured = capture(window, region);
    if (const auto* error = std::get_if<ReadingError>(&captured)) {
        std::promise<ScreenOutcome> failed;
        failed.set_value(*error);
        return failed.get_future();
    }
    return recognizeText(
        std::make_shared<const PixelBuffer>(std::move(std::get<PixelBuffer>(captured))), fast,
        keepImage, std::move(cancel));
}

std::future<ScreenOutcome> ScreenOCR::recognizeWithPixels(const platform::TargetWindow& window,
                                                          std::optional<ScreenRect> region,
                                                          CancelToken cancel) {
    return recognize(window, region, false, true, std::move(cancel));
}

std::optional<PixelBuffer> ScreenOCR::pixelBuffer(const ScreenRect& area) const {
    std::lock_guard lock{lastImageMutex_};
    if (!lastImage_) {
        return std::nullopt;
    }
    return ScreenBands::cropped(*lastImage_, area);
}

} // namespace lectorbell::sources
