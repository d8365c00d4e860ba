#include "platform/linux/X11Windows.hpp"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <algorithm>
#include <vector>

namespace lectorbell::x11 {

namespace {

constexpr int searchDepth = 4;

Display* asDisplay(void* display) {
    return static_cast<Display*>(display);
}

std::optional<Window> windowProperty(Display* display, Window window, const char* name) {
    Atom property = XInternAtom(display, name, True);
    if (property == None) {
        return std::nullopt;
    }
    Atom type = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long after = 0;
    unsigned char* data = nullptr;
    std::optional<Window> value;
    if (XGetWindowProperty(display, window, property, 0, 1, False, AnyPropertyType, &type, &format,
                           &count, &after, &data) == Success &&
        data && count == 1 && format == 32) {
        value = static_cast<Window>(*reinterpret_cast<unsigned long*>(data));
    }
    if (data) {
        XFree(data);
    }
    return value;
}

// The window's _NET_WM_PID, or that of a descendant (a window manager's frame holds the client).
std::optional<ProcessID> ownerOf(Display* display, Window window, int depth) {
    if (std::optional<Window> pid = windowProperty(display, window, "_NET_WM_PID")) {
        return static_cast<ProcessID>(*pid);
    }
    if (depth == 0) {
        return std::nullopt;
    }
    Window root = 0;
    Window parent = 0;
    Window* children = nullptr;
    unsigned int count = 0;
    std::optional<ProcessID> found;
    if (XQueryTree(display, window, &root, &parent, &children, &count)) {
        for (unsigned int i = count; i-- > 0 && !found;) {
            found = ownerOf(display, children[i], depth - 1);
        }
        if (children) {
            XFree(children);
        }
    }
    return found;
}

int ignoreErrors(Display*, XErrorEvent*) {
    // Windows vanish between listing and asking; such a window simply has no owner.
    return 0;
}

// The root's viewable children, bottom to top, with their frames.
std::vector<std::pair<Window, ScreenRect>> viewableTopLevels(Display* display) {
    std::vector<std::pair<Window, ScreenRect>> windows;
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
        if (!XGetWindowAttributes(display, children[i], &attributes) ||
            attributes.map_state != IsViewable || attributes.c_class == InputOnly) {
            continue;
        }
        windows.emplace_back(children[i], ScreenRect{static_cast<double>(attributes.x),
                                                     static_cast<double>(attributes.y),
                                                     static_cast<double>(attributes.width),
                                                     static_cast<double>(attributes.height)});
    }
    if (children) {
        XFree(children);
    }
    return windows;
}

} // namespace

WindowOwners::WindowOwners()
    : display_(XOpenDisplay(nullptr)) {
    if (display_) {
        XSetErrorHandler(ignoreErrors);
    }
}

WindowOwners::~WindowOwners() {
    if (display_) {
        XCloseDisplay(asDisplay(display_));
    }
}

std::optional<ProcessID> WindowOwners::processAt(ScreenPoint point) {
    Display* display = asDisplay(display_);
    if (!display) {
        return std::nullopt;
    }
    std::vector<std::pair<Window, ScreenRect>> windows = viewableTopLevels(display);
    // Bottom to top: the topmost window containing the point wins.
    for (auto it = windows.rbegin(); it != windows.rend(); ++it) {
        if (it->second.contains(point)) {
            if (std::optional<ProcessID> pid = ownerOf(display, it->first, searchDepth)) {
                return pid;
            }
        }
    }
    return std::nullopt;
}

std::vector<ProcessID> WindowOwners::visibleProcesses() {
    std::vector<ProcessID> processes;
    Display* display = asDisplay(display_);
    if (!display) {
        return processes;
    }
    for (const auto& [window, frame] : viewableTopLevels(display)) {
        std::optional<ProcessID> pid = ownerOf(display, window, searchDepth);
        if (pid && std::find(processes.begin(), processes.end(), *pid) == processes.end()) {
            processes.push_back(*pid);
        }
    }
    return processes;
}

std::optional<ProcessID> WindowOwners::focusedProcess() {
    Display* display = asDisplay(display_);
    if (!display) {
        return std::nullopt;
    }
    Window root = DefaultRootWindow(display);
    if (std::optional<Window> active = windowProperty(display, root, "_NET_ACTIVE_WINDOW");
        active && *active != None) {
        if (std::optional<ProcessID> pid = ownerOf(display, *active, 0)) {
            return pid;
        }
    }
    Window focus = None;
    int revert = 0;
    XGetInputFocus(display, &focus, &revert);
    // Walk up from the focused window until one names its process.
    for (int level = 0; focus != None && focus != PointerRoot && level < 16; ++level) {
        if (std::optional<ProcessID> pid = ownerOf(display, focus, 0)) {
            return pid;
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

} // namespace lectorbell::x11
