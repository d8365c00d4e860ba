#include "platform/linux/x11/X11WindowLocator.hpp"

#include "platform/linux/x11/X11Connection.hpp"

#include <X11/Xutil.h>
#include <algorithm>
#include <utility>
#include <vector>

namespace lectorbell::platform::x11 {

namespace {

// Front to back.
std::vector<::Window> windowsFrontToBack(x11::Connection::Session& session) {
    ::Display* display = session.display();
    std::vector<unsigned long> stacking =
        x11::Connection::cardinals(display, session.root(), "_NET_CLIENT_LIST_STACKING");
    std::vector<::Window> windows(stacking.rbegin(), stacking.rend());
    if (!windows.empty()) {
        return windows;
    }
    ::Window rootReturn = 0;
    ::Window parent = 0;
    ::Window* children = nullptr;
    unsigned int count = 0;
    if (XQueryTree(display, session.root(), &rootReturn, &parent, &children, &count) != 0 &&
        children != nullptr) {
        windows.assign(children, children + count);
        std::reverse(windows.begin(), windows.end());
    }
    if (children != nullptr) {
        XFree(children);
    }
    return windows;
}

struct Placement {
    ScreenRect frame;
    std::optional<double> titleBarBottom;
};

// The window's bounds on screen, with the window manager's frame around it when it says.
std::optional<Placement> placementOf(x11::Connection::Session& session, ::Window window,
                                     const XWindowAttributes& attributes) {
    int x = 0;
    int y = 0;
    ::Window child = 0;
    if (XTranslateCoordinates(session.display(), window, session.root(), 0, 0, &x, &y, &child) ==
        0) {
        return std::nullopt;
    }
    std::vector<unsigned long> extents =
        x11::Connection::cardinals(session.display(), window, "_NET_FRAME_EXTENTS");
    double left = 0;
    double right = 0;
    double top = 0;
    double bottom = 0;
    if (extents.size() == 4) {
        left = static_cast<double>(extents[0]);
        right = static_cast<double>(extents[1]);
        top = static_cast<double>(extents[2]);
        bottom = static_cast<double>(extents[3]);
    }
    Placement placement{ScreenRect{x - left, y - top, attributes.width + left + right,
                                   attributes.height + top + bottom},
                        std::nullopt};
    if (top > 0) {
        placement.titleBarBottom = static_cast<double>(y);
    }
    return placement;
}

bool isFullyTransparent(x11::Connection::Session& session, ::Window window) {
    std::vector<unsigned long> opacity =
        x11::Connection::cardinals(session.display(), window, "_NET_WM_WINDOW_OPACITY");
    if (opacity.empty()) {
        return false;
    }
    return static_cast<double>(opacity[0] & 0xFFFFFFFFUL) / 4294967295.0 <= 0.01;
}

} // namespace

X11WindowLocator::X11WindowLocator(std::shared_ptr<x11::Connection> connection)
    : connection_(std::move(connection)) {}

std::optional<TargetWindow> X11WindowLocator::window(ScreenPoint point) {
    if (!connection_) {
        return std::nullopt;
    }
    x11::Connection::Session session{*connection_};
    if (!session.alive()) {
        return std::nullopt;
    }
    for (::Window window : windowsFrontToBack(session)) {
        XWindowAttributes attributes{};
        // A window that closed since the list was read fails here and is passed over.
        if (XGetWindowAttributes(session.display(), window, &attributes) == 0 ||
            attributes.map_state != IsViewable || attributes.c_class != InputOutput) {
            continue;
        }
        std::optional<Placement> placement = placementOf(session, window, attributes);
        if (!placement || !placement->frame.contains(point) ||
            isFullyTransparent(session, window)) {
            continue;
        }
        std::vector<unsigned long> pid =
            x11::Connection::cardinals(session.display(), window, "_NET_WM_PID");
        session.syncAndTakeError();
        return TargetWindow{static_cast<std::uint32_t>(window),
                            pid.empty() ? 0 : static_cast<std::int32_t>(pid[0]), placement->frame,
                            placement->titleBarBottom};
    }
    session.syncAndTakeError();
    return std::nullopt;
}

} // namespace lectorbell::platform::x11
