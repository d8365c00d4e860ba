#pragma once

#include "platform/WindowLocator.hpp"

#include <vector>

namespace lectorbell::testing {

// Windows given by the test, front to back: the first whose frame holds the point is found.
class FakeWindowLocator final : public platform::WindowLocator {
public:
    explicit FakeWindowLocator(std::vector<platform::TargetWindow> frontToBack)
        : windows_(std::move(frontToBack)) {}

    std::optional<platform::TargetWindow> window(ScreenPoint point) override {
        for (const platform::TargetWindow& window : windows_) {
            if (window.frame.contains(point)) {
                return window;
            }
        }
        return std::nullopt;
    }

private:
    std::vector<platform::TargetWindow> windows_;
};

} // namespace lectorbell::testing
