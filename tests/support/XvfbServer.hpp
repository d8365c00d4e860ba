#pragma once

// A private X server for tests: Xvfb on a free display number, stopped when the object goes.

#include <memory>
#include <string>

// Xlib's display type, without Xlib's macros in every test that includes this.
struct _XDisplay;

namespace lectorbell::testing {

class XvfbServer {
public:
    // No value when Xvfb cannot be started (see lastFailure); DISPLAY is set to the new server
    // on success, and the test's own client connection is open.
    static std::unique_ptr<XvfbServer> start(int width = 1280, int height = 800);
    // Whether the Xvfb executable is on PATH.
    static bool installed();
    // Why the last start gave no server.
    static const std::string& lastFailure();
    ~XvfbServer();
    XvfbServer(const XvfbServer&) = delete;
    XvfbServer& operator=(const XvfbServer&) = delete;

    const std::string& display() const { return display_; }
    // The test's connection to the server (for making windows); closed before the server stops.
    _XDisplay* client() const { return client_; }

private:
    XvfbServer(int pid, std::string display, _XDisplay* client)
        : pid_(pid)
        , display_(std::move(display))
        , client_(client) {}

    int pid_;
    std::string display_;
    _XDisplay* client_;
};

} // namespace lectorbell::testing
