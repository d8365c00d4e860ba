#include "platform/linux/x11/X11Windows.hpp"

#include "platform/linux/x11/X11Clients.hpp"
#include "platform/linux/x11/X11Connection.hpp"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <algorithm>
#include <vector>

namespace lectorbell::platform::x11 {

namespace {

constexpr int searchDepth = 4;

std::optional<unsigned long> firstCardinal(Display* display, Window window, const char* name) {
    std::vector<unsigned long> values = platform::x11::Connection::cardinals(display, window, name);
    if (values.empty()) {
        return std::nullopt;
    }
    return values.front();
}

std::optional<ProcessID> ownerOf(Display* display, Window window, int depth) {
    std::optional<Window> client = clientWindow(display, window, depth);
    // The window may have closed since it was found.
    std::optional<unsigned long> pid =
        client ? firstCardinal(display, *client, "_NET_WM_PID") : std::nullopt;
    if (!pid) {
        return std::nullopt;
    }
    return static_cast<ProcessID>(*pid);
}

// The root's viewable children, bottom to top.
std::vector<Window> viewableTopLevels(Display* display) {
    std::vector<Window> windows;
    Window unusedRoot = 0;
    Window unusedParent = 0;
    Window* children = nullptr;
    unsigned int count = 0;
    if (!XQueryTree(display, DefaultRootWindow(display), &unusedRoot, &unusedParent, &children,
                    &count)) {
        return windows;
    }
    for (unsigned int i = 0; i < count; ++i) {
        XWindowAttributes attributes;
        if (XGetWindowAttributes(display, children[i], &attributes) &&
            attributes.map_state == IsViewable && attributes.c_class != InputOnly) {
            windows.push_back(children[i]);
        }
    }
    if (children) {
        XFree(children);
    }
    return windows;
}

} // namespace

WindowOwners::WindowOwners()
    : connection_(platform::x11::Connection::open())
    , locator_(connection_) {}

std::optional<ProcessID> WindowOwners::processAt(ScreenPoint point) {
    std::optional<platform::TargetWindow> window = locator_.window(point);
    if (!window) {
        return std::nullopt;
    }
    if (window->pid > 0) {
        return static_cast<ProcessID>(window->pid);
    }
    // Without a window manager's client list the window found may be a frame around the
    // client, which names the process.
    platform::x11::Connection::Session session{*connection_};
    if (!session.alive()) {
        return std::nullopt;
    }
    std::optional<ProcessID> owner = ownerOf(session.display(), window->windowID, searchDepth);
    session.syncAndTakeError();
    return owner;
}

std::vector<ProcessID> WindowOwners::visibleProcesses() {
    std::vector<ProcessID> processes;
    if (!connection_) {
        return processes;
    }
    platform::x11::Connection::Session session{*connection_};
    if (!session.alive()) {
        return processes;
    }
    Display* display = session.display();
    for (Window window : viewableTopLevels(display)) {
        std::optional<ProcessID> pid = ownerOf(display, window, searchDepth);
        if (pid && std::find(processes.begin(), processes.end(), *pid) == processes.end()) {
            processes.push_back(*pid);
        }
    }
    return processes;
}

std::optional<ProcessID> WindowOwners::focusedProcess() {
    if (!connection_) {
        return std::nullopt;
    }
    platform::x11::Connection::Session session{*connection_};
    if (!session.alive()) {
        return std::nullopt;
    }
    std::optional<Window> client = focusedClient(session.display());
    std::optional<ProcessID> pid;
    if (client) {
        pid = ownerOf(session.display(), *client, 0);
    }
    return pid;
}

} // namespace lectorbell::platform::x11
