#pragma once

#include "lectorbell/ScreenGeometry.hpp"
#include "lectorbell/SelectionPolicy.hpp"

#include <optional>
#include <vector>

namespace lectorbell::x11 {

// The X display's windows: who owns the window at a point and the focused one. Choosing the
// application by its window keeps a hung application elsewhere from costing anything.
class WindowOwners {
public:
    WindowOwners();
    ~WindowOwners();
    WindowOwners(const WindowOwners&) = delete;
    WindowOwners& operator=(const WindowOwners&) = delete;

    bool connected() const { return display_ != nullptr; }
    // The process (_NET_WM_PID) of the topmost visible window at a global point.
    std::optional<ProcessID> processAt(ScreenPoint point);
    // The process of the active window, else of the window holding the keyboard focus.
    std::optional<ProcessID> focusedProcess();
    // The processes of every visible top-level window, each once.
    std::vector<ProcessID> visibleProcesses();

private:
    void* display_ = nullptr;
};

} // namespace lectorbell::x11
