#pragma once

#include "platform/ScreenCapturer.hpp"

#include <atomic>
#include <string>

namespace lectorbell::testing {

// A screen that shows one image file: the PNG's top-left pixel lies at `origin`, with
// `pixelsPerPoint` image pixels per point. A capture is the part of the image inside the region;
// a region beside the image captures nothing.
class ImageFileCapturer final : public platform::ScreenCapturer {
public:
    // Throws when the file cannot be read.
    ImageFileCapturer(const std::string& path, ScreenPoint origin, double pixelsPerPoint = 1);

    platform::CaptureResult capture(const ScreenRect& region) override;

    int captures() const { return captures_; }
    const PixelBuffer& screen() const { return screen_; }

private:
    PixelBuffer screen_;
    std::atomic<int> captures_{0};
};

} // namespace lectorbell::testing
