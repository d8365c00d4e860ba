#pragma once

#include "platform/AccessibilityApp.hpp"
#include "platform/linux/atspi/AtspiCall.hpp"
#include "platform/linux/x11/X11Windows.hpp"

#include <atspi/atspi.h>
#include <optional>
#include <utility>
#include <vector>

namespace lectorbell::platform::atspi {

// The AT-SPI accessibility bus and the X display. Use it from one thread only (the
// extractor's worker): the accessibility client library is not thread-safe.
class AtspiDesktop final : public AccessibilityDesktop {
public:
    AtspiDesktop();

    bool isTrusted() override;
    std::optional<AccessibilityGrant> requestTrust() override;
    std::optional<ProcessID> processAt(ScreenPoint point) override;
    std::optional<ProcessID> frontmostProcess() override;
    std::unique_ptr<AccessibilityApp> application(ProcessID pid) override;
    bool buildsTreeOnRequest(ProcessID pid) override;

    // Whether the bus tells toolkits to expose their trees (org.a11y.Status IsEnabled); no
    // value when the bus cannot be asked.
    static std::optional<bool> toolkitAccessibilityEnabled();
    // Sets IsEnabled, which the bus also stores in the desktop's settings for the session's
    // future applications. Applications that look only as they start must be restarted.
    static bool enableToolkitAccessibility();

private:
    bool connect();
    // The applications registered on the bus, with their processes.
    std::vector<std::pair<ProcessID, GRef<AtspiAccessible>>> busApplications();

    std::optional<bool> connected_;
    x11::WindowOwners windows_;
};

} // namespace lectorbell::platform::atspi
