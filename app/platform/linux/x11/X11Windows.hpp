#pragma once

#include "lectorbell/ScreenGeometry.hpp"
#include "lectorbell/SelectionPolicy.hpp"
#include "platform/linux/x11/X11WindowLocator.hpp"

#include <memory>
#include <optional>
#include <vector>

namespace lectorbell::platform::x11 {

// The X display's windows by their owners: who owns the window at a point and the focused one.
// Choosing the application by its window keeps a hung application elsewhere from costing
// anything.
class WindowOwners {
public:
    WindowOwners();

    bool connected() const { return connection_ != nullptr; }
    // The process (_NET_WM_PID) of the window under a global point, as capture finds it.
    std::optional<ProcessID> processAt(ScreenPoint point);
    // The process of the active window, else of the window holding the keyboard focus.
    std::optional<ProcessID> focusedProcess();
    // The processes of every visible top-level window, each once.
    std::vector<ProcessID> visibleProcesses();

private:
    std::shared_ptr<Connection> connection_;
    X11WindowLocator locator_;
};

} // namespace lectorbell::platform::x11
