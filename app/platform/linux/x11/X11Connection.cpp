#include "platform/linux/x11/X11Connection.hpp"

#include <X11/Xatom.h>
#include <atomic>
#include <mutex>
#include <unordered_map>
#include <utility>

namespace lectorbell::platform::x11 {

namespace {

// Xlib's handlers are process-wide; they record instead of exiting. Errors are kept per
// connection, so that one adapter's vanished window never fails another adapter's request.
std::mutex errorsMutex;
std::unordered_map<::Display*, int> firstErrors;
std::atomic<bool> connectionLost{false};

int recordError(::Display* display, XErrorEvent* event) {
    std::lock_guard<std::mutex> lock{errorsMutex};
    int& first = firstErrors[display];
    if (first == 0) {
        first = event->error_code;
    }
    return 0;
}

int takeError(::Display* display) {
    std::lock_guard<std::mutex> lock{errorsMutex};
    auto found = firstErrors.find(display);
    return found == firstErrors.end() ? 0 : std::exchange(found->second, 0);
}

int recordLostConnection(::Display*) {
    connectionLost = true;
    return 0;
}

void noExit(::Display*, void*) {
    connectionLost = true;
}

void installHandlers() {
    static std::once_flag once;
    std::call_once(once, [] {
        XInitThreads();
        XSetErrorHandler(recordError);
        XSetIOErrorHandler(recordLostConnection);
    });
}

} // namespace

std::shared_ptr<Connection> Connection::open() {
    installHandlers();
    ::Display* display = XOpenDisplay(nullptr);
    if (display == nullptr) {
        return nullptr;
    }
    // Without this, Xlib calls exit() after the I/O error handler returns.
    XSetIOErrorExitHandler(display, noExit, nullptr);
    return std::shared_ptr<Connection>(new Connection(display));
}

Connection::Connection(::Display* display)
    : display_(display) {}

Connection::~Connection() {
    if (!connectionLost) {
        XCloseDisplay(display_);
    }
    std::lock_guard<std::mutex> lock{errorsMutex};
    firstErrors.erase(display_);
}

Connection::Session::Session(Connection& connection)
    : connection_(connection)
    , lock_(connection.mutex_) {}

bool Connection::Session::alive() const {
    return !connectionLost;
}

::Window Connection::Session::root() const {
    return DefaultRootWindow(connection_.display_);
}

int Connection::Session::syncAndTakeError() {
    if (connectionLost) {
        return -1;
    }
    XSync(connection_.display_, False);
    return takeError(connection_.display_);
}

std::vector<unsigned long> Connection::cardinals(::Display* display, ::Window window,
                                                 const char* property) {
    Atom name = XInternAtom(display, property, False);
    Atom type = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long remaining = 0;
    unsigned char* data = nullptr;
    std::vector<unsigned long> values;
    int status = XGetWindowProperty(display, window, name, 0, 1 << 16, False, AnyPropertyType,
                                    &type, &format, &count, &remaining, &data);
    if (status == Success && data != nullptr && format == 32) {
        const auto* items = reinterpret_cast<const unsigned long*>(data);
        values.assign(items, items + count);
    }
    if (data != nullptr) {
        XFree(data);
    }
    return values;
}

} // namespace lectorbell::platform::x11
