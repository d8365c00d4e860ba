#pragma once

// One connection to the X server, shared by the X11 adapters. Xlib calls on a connection are
// serialised by its lock; X protocol errors are recorded instead of ending the process, and a
// lost connection marks the connection dead instead of exiting.

#include <X11/Xlib.h>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace lectorbell::platform::x11 {

class Connection {
public:
    // Opens the display named by DISPLAY; no value when there is none.
    static std::shared_ptr<Connection> open();
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    // Holds the connection's lock for a series of calls.
    class Session {
    public:
        explicit Session(Connection& connection);
        // False once the server has gone away.
        bool alive() const;
        ::Display* display() const { return connection_.display_; }
        ::Window root() const;
        // Waits for the server to process every request, then returns and clears the first
        // protocol error code seen since the last call (0 for none).
        int syncAndTakeError();

    private:
        Connection& connection_;
        std::lock_guard<std::mutex> lock_;
    };

    // A window property as an array of 32-bit items (longs in Xlib's API); empty when absent.
    static std::vector<unsigned long> cardinals(::Display* display, ::Window window,
                                                const char* property);

private:
    explicit Connection(::Display* display);

    ::Display* display_;
    std::mutex mutex_;
};

} // namespace lectorbell::platform::x11
