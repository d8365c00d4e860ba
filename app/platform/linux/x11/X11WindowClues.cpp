#include "platform/linux/x11/X11WindowClues.hpp"

#include "platform/linux/x11/X11Connection.hpp"

#include <X11/Xutil.h>
#include <string>

namespace lectorbell::platform::x11 {

namespace {

// A property of 8-bit text (STRING or UTF8_STRING); none when absent or empty.
std::optional<std::string> textProperty(::Display* display, ::Window window, const char* name) {
    Atom property = XInternAtom(display, name, False);
    Atom type = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long remaining = 0;
    unsigned char* data = nullptr;
    std::optional<std::string> text;
    if (XGetWindowProperty(display, window, property, 0, 1024, False, AnyPropertyType, &type,
                           &format, &count, &remaining, &data) == Success &&
        data != nullptr && format == 8 && count > 0) {
        text = std::string{reinterpret_cast<const char*>(data), count};
        // Some toolkits count the terminating NUL.
        text->erase(text->find_last_not_of('\0') + 1);
    }
    if (data != nullptr) {
        XFree(data);
    }
    if (text && text->empty()) {
        text.reset();
    }
    return text;
}

std::optional<std::string> nonEmpty(const char* text) {
    if (text == nullptr || *text == '\0') {
        return std::nullopt;
    }
    return std::string{text};
}

} // namespace

xdg::WindowClues windowClues(::Display* display, ::Window window) {
    xdg::WindowClues clues;
    std::vector<unsigned long> pid = Connection::cardinals(display, window, "_NET_WM_PID");
    if (!pid.empty()) {
        clues.pid = static_cast<ProcessID>(pid.front());
    }
    clues.gtkApplicationID = textProperty(display, window, "_GTK_APPLICATION_ID");
    clues.kdeDesktopFile = textProperty(display, window, "_KDE_NET_WM_DESKTOP_FILE");
    XClassHint hint{nullptr, nullptr};
    if (XGetClassHint(display, window, &hint) != 0) {
        clues.instance = nonEmpty(hint.res_name);
        clues.className = nonEmpty(hint.res_class);
        if (hint.res_name != nullptr) {
            XFree(hint.res_name);
        }
        if (hint.res_class != nullptr) {
            XFree(hint.res_class);
        }
    }
    return clues;
}

std::optional<ScreenPoint> pointerPosition(::Display* display) {
    ::Window root = 0;
    ::Window child = 0;
    int rootX = 0;
    int rootY = 0;
    int windowX = 0;
    int windowY = 0;
    unsigned int mask = 0;
    if (XQueryPointer(display, DefaultRootWindow(display), &root, &child, &rootX, &rootY, &windowX,
                      &windowY, &mask) == False) {
        return std::nullopt;
    }
    return ScreenPoint{static_cast<double>(rootX), static_cast<double>(rootY)};
}

} // namespace lectorbell::platform::x11
