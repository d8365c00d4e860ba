#include "platform/linux/x11/X11Clients.hpp"

#include "platform/linux/x11/X11Connection.hpp"

#include <vector>

namespace lectorbell::platform::x11 {

std::optional<Window> clientWindow(Display* display, Window window, int depth) {
    if (!Connection::cardinals(display, window, "_NET_WM_PID").empty()) {
        return window;
    }
    if (depth <= 0) {
        return std::nullopt;
    }
    Window root = 0;
    Window parent = 0;
    Window* children = nullptr;
    unsigned int count = 0;
    std::optional<Window> found;
    if (XQueryTree(display, window, &root, &parent, &children, &count)) {
        for (unsigned int i = count; i-- > 0 && !found;) {
            found = clientWindow(display, children[i], depth - 1);
        }
        if (children) {
            XFree(children);
        }
    }
    return found;
}

std::optional<Window> focusedClient(Display* display) {
    Window root = DefaultRootWindow(display);
    std::vector<unsigned long> active = Connection::cardinals(display, root, "_NET_ACTIVE_WINDOW");
    if (!active.empty() && active.front() != None) {
        if (std::optional<Window> client = clientWindow(display, active.front(), 0)) {
            return client;
        }
    }
    Window focus = None;
    int revert = 0;
    XGetInputFocus(display, &focus, &revert);
    // Walk up from the focused window until one names its process.
    for (int level = 0; focus != None && focus != PointerRoot && level < 16; ++level) {
        if (std::optional<Window> client = clientWindow(display, focus, 0)) {
            return client;
        }
        Window unusedRoot = 0;
        Window parent = None;
        Window* children = nullptr;
        unsigned int count = 0;
        if (!XQueryTree(display, focus, &unusedRoot, &parent, &children, &count)) {
            break;
        }
        if (children) {
            XFree(children);
        }
        if (parent == root) {
            break;
        }
        focus = parent;
    }
    return std::nullopt;
}

} // namespace lectorbell::platform::x11
