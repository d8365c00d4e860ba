#pragma once

#include "lectorbell/PixelBuffer.hpp"
#include "lectorbell/ScreenGeometry.hpp"

#include <string>
#include <variant>

namespace lectorbell::platform {

// Why a capture gave no image.
struct CaptureFailure {
    enum class Kind {
        // No access to the screen (no display connection, or capture refused).
        noScreenAccess,
        // The region lies wholly off-screen or has no area.
        emptyRegion,
        // The window system failed while capturing (for example the display went away).
        failed,
    };
    Kind kind = Kind::failed;
    // Metadata for the log: never screen contents.
    std::string detail;
};

using CaptureResult = std::variant<PixelBuffer, CaptureFailure>;

// One still image of a screen region, without the pointer. The region is clipped to the
// screen; the image's `area` is the part actually captured.
class ScreenCapturer {
public:
    virtual ~ScreenCapturer() = default;
    virtual CaptureResult capture(const ScreenRect& region) = 0;
};

} // namespace lectorbell::platform
