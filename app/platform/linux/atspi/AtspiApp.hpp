#pragma once

#include "platform/AccessibilityApp.hpp"
#include "platform/linux/atspi/AtspiNode.hpp"

namespace lectorbell::platform::atspi {

// One application on the AT-SPI bus, for one lookup.
class AtspiApp final : public AccessibilityApp {
public:
    AtspiApp(GRef<AtspiAccessible> application, ProcessID pid);

    ProcessID processID() const override { return pid_; }
    ElementRef applicationElement() override { return root_; }
    AXAnswer<ElementRef> elementAtPosition(ScreenPoint point) override;
    AXAnswer<ElementRef> focusedElement() override;
    bool hasTimedOut() const override { return guard_->timedOut(); }
    // Linux toolkits have no per-application switch: Chromium and Qt read the bus's status
    // when they start (see AtspiDesktop::enableToolkitAccessibility).
    bool requestManualAccessibility() override { return false; }
    void allowReadAhead(bool allowed) override { root_->readAhead()->allow(allowed); }

private:
    std::shared_ptr<HangGuard> guard_;
    std::shared_ptr<AtspiNode> root_;
    ProcessID pid_;
};

} // namespace lectorbell::platform::atspi
