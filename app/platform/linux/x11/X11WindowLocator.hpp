#pragma once

#include "platform/WindowLocator.hpp"

#include <memory>

namespace lectorbell::platform::x11 {

class Connection;

// The window under a point from the window manager's stacking list (_NET_CLIENT_LIST_STACKING),
// or from the root window's stacking order when no window manager provides one.
class X11WindowLocator final : public WindowLocator {
public:
    explicit X11WindowLocator(std::shared_ptr<Connection> connection);
    std::optional<TargetWindow> window(ScreenPoint point) override;

private:
    std::shared_ptr<Connection> connection_;
};

} // namespace lectorbell::platform::x11
