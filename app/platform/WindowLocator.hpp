#pragma once

#include "lectorbell/ScreenGeometry.hpp"

#include <cstdint>
#include <optional>

namespace lectorbell::platform {

// The window to capture.
struct TargetWindow {
    std::uint32_t windowID = 0;
    // The owner's process id; 0 when the window does not say.
    std::int32_t pid = 0;
    // Bounds in global screen points.
    ScreenRect frame;

    friend bool operator==(const TargetWindow&, const TargetWindow&) = default;
};

// Finds the top-level window under a screen point, front to back, skipping windows that show
// nothing (fully transparent or not viewable).
class WindowLocator {
public:
    virtual ~WindowLocator() = default;
    virtual std::optional<TargetWindow> window(ScreenPoint point) = 0;
};

} // namespace lectorbell::platform
