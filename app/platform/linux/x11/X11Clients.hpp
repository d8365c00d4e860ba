#pragma once

// Client windows: the windows of applications, as opposed to a window manager's frames.

#include <X11/Xlib.h>
#include <optional>

namespace lectorbell::platform::x11 {

// The window itself when it names its process (_NET_WM_PID), else the first descendant that
// does, down to `depth` levels: a window manager's frame holds the client window.
std::optional<::Window> clientWindow(::Display* display, ::Window window, int depth);

// The client window of the active window (_NET_ACTIVE_WINDOW), else of the window holding the
// keyboard focus or its nearest ancestor that names its process.
std::optional<::Window> focusedClient(::Display* display);

} // namespace lectorbell::platform::x11
