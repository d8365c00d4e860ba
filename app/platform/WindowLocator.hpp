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
    // Bounds in global screen points, the window manager's frame included.
    ScreenRect frame;
    // Where the title bar drawn by the window manager ends, when there is one: text above it is
    // not the window's content.
    std::optional<double> titleBarBottom;

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
