#pragma once

#include "platform/ScreenCapturer.hpp"

#include <memory>

namespace lectorbell::platform::x11 {

class Connection;

// Captures from the root window, so the image is what the user sees; X servers leave the
// pointer out of captured images. Uses the shared-memory extension where the server offers it.
class X11ScreenCapturer final : public ScreenCapturer {
public:
    explicit X11ScreenCapturer(std::shared_ptr<Connection> connection);
    CaptureResult capture(const ScreenRect& region) override;

private:
    std::shared_ptr<Connection> connection_;
};

} // namespace lectorbell::platform::x11
