#pragma once

#include "lectorbell/ScreenGeometry.hpp"
#include "platform/linux/xdg/AppIdentities.hpp"

#include <X11/Xlib.h>
#include <optional>

namespace lectorbell::platform::x11 {

// What a client window's properties tell about its application: _NET_WM_PID, WM_CLASS,
// _GTK_APPLICATION_ID and _KDE_NET_WM_DESKTOP_FILE.
xdg::WindowClues windowClues(::Display* display, ::Window window);

// Where the pointer is, in root window coordinates (the global screen points); none when it is
// on another screen of the display.
std::optional<ScreenPoint> pointerPosition(::Display* display);

} // namespace lectorbell::platform::x11
