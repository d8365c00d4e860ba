#pragma once

#include "platform/AccessibilityElement.hpp"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace lectorbell {

// One running application's accessibility tree. Every call into the application is bounded by
// the messaging time-out; once one call has timed out, the rest of the lookup answers
// AXFailure::timedOut at once instead of waiting again.
class AccessibilityApp {
public:
    virtual ~AccessibilityApp() = default;

    virtual ProcessID processID() const = 0;
    virtual ElementRef applicationElement() = 0;
    // The deepest element at a global screen point.
    virtual AXAnswer<ElementRef> elementAtPosition(ScreenPoint point) = 0;
    virtual AXAnswer<ElementRef> focusedElement() = 0;
    // True once any call into the application has timed out.
    virtual bool hasTimedOut() const = 0;
    // Asks an application that builds its tree only on request (Chromium, Electron) to build it.
    // True when the request was made and accepted.
    virtual bool requestManualAccessibility() = 0;
    // Whether a large tree may be read ahead in bulk for a long walk. Off for a quick lookup,
    // which looks at too few elements to pay for it.
    virtual void allowReadAhead(bool allowed) = 0;
};

// A running application that exposes nothing until it is started again.
struct AppToRestart {
    std::string name;
    // What it must be started with, when the desktop's switch alone is not enough.
    std::string startOption;

    bool operator==(const AppToRestart&) const = default;
};

// What asking for the desktop's accessibility changed.
struct AccessibilityGrant {
    // True when it was off and is now on; false when it already was on.
    bool switchedOn = false;
    // Running applications that look for the switch only as they start.
    std::vector<AppToRestart> restartNeeded;
};

// The desktop's accessibility service: whether it can be used, and the applications on it.
class AccessibilityDesktop {
public:
    virtual ~AccessibilityDesktop() = default;

    // The service is reachable and applications are told to expose their trees.
    virtual bool isTrusted() = 0;
    // Turns the service on for applications, for good (it stays on for later sessions); no
    // value when the service cannot be reached or refuses.
    virtual std::optional<AccessibilityGrant> requestTrust() = 0;
    // The application that owns the window at a global screen point.
    virtual std::optional<ProcessID> processAt(ScreenPoint point) = 0;
    // The application of the focused (active) window.
    virtual std::optional<ProcessID> frontmostProcess() = 0;
    virtual std::unique_ptr<AccessibilityApp> application(ProcessID pid) = 0;
    // Whether the application builds its tree only when asked (Chromium and Electron apps).
    virtual bool buildsTreeOnRequest(ProcessID pid) = 0;
};

} // namespace lectorbell
