#include "sources/TrustNotice.hpp"

namespace lectorbell {

std::optional<std::string> trustNotice(const AccessibilityGrant& grant) {
    if (!grant.switchedOn) {
        return std::nullopt;
    }
    std::string notice = "Accessibility is now on for your apps.";
    if (grant.restartNeeded.empty()) {
        return notice;
    }
    notice += grant.restartNeeded.size() == 1 ? " Restart this app so Lectorbell can read it: "
                                              : " Restart these apps so Lectorbell can read them: ";
    for (std::size_t i = 0; i < grant.restartNeeded.size(); ++i) {
        const AppToRestart& app = grant.restartNeeded[i];
        notice += (i == 0 ? "" : ", ") + app.name;
        if (!app.startOption.empty()) {
            notice += " (with " + app.startOption + ")";
        }
    }
    return notice + ".";
}

} // namespace lectorbell
