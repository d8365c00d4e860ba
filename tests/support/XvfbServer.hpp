#pragma once

// A private X server for tests: Xvfb on a free display number, stopped when the object goes.

#include <memory>
#include <string>

namespace lectorbell::testing {

class XvfbServer {
public:
    // No value when Xvfb cannot be started; DISPLAY is set to the new server on success.
    static std::unique_ptr<XvfbServer> start(int width = 1280, int height = 800);
    ~XvfbServer();
    XvfbServer(const XvfbServer&) = delete;
    XvfbServer& operator=(const XvfbServer&) = delete;

    const std::string& display() const { return display_; }

private:
    XvfbServer(int pid, std::string display)
        : pid_(pid)
        , display_(std::move(display)) {}

    int pid_;
    std::string display_;
};

} // namespace lectorbell::testing
