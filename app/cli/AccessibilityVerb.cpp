// `lectorbell accessibility [--enable]`: whether applications expose their accessibility trees
// to Lectorbell, and switching that on for good, with the apps that must be restarted for it.

#include "cli/Verbs.hpp"
#include "lectorbell/ReadingModel.hpp"
#include "platform/Platform.hpp"
#include "sources/SerialQueue.hpp"
#include "sources/TrustNotice.hpp"

#include <iostream>
#include <memory>

namespace lectorbell::cli {

namespace {

int runAccessibility(platform::Platform& platform, bool enable) {
    // The accessibility client lives on one worker thread, as in the extractor.
    SerialQueue queue;
    return queue
        .submit([&platform, enable] {
            if (!enable) {
                std::optional<bool> on = platform.toolkitAccessibilityEnabled();
                if (!on) {
                    std::cout << ReadingError{ReadingError::Kind::accessibilityPermissionNeeded}
                                     .userMessage()
                              << '\n';
                    return 3;
                }
                std::cout << "accessibility: " << (*on ? "on" : "off") << '\n';
                return 0;
            }
            std::optional<AccessibilityGrant> grant =
                platform.accessibilityDesktop()->requestTrust();
            if (!grant) {
                std::cout
                    << ReadingError{ReadingError::Kind::accessibilityPermissionNeeded}.userMessage()
                    << '\n';
                return 3;
            }
            std::cout << "accessibility: on\n";
            if (std::optional<std::string> notice = trustNotice(*grant)) {
                std::cout << *notice << '\n';
            }
            return 0;
        })
        .get();
}

} // namespace

void addAccessibilityVerb(CLI::App& app, VerbOutcome& outcome, platform::Platform& platform) {
    auto enable = std::make_shared<bool>(false);
    CLI::App* verb = app.add_subcommand(
        "accessibility", "Show whether apps expose their text to Lectorbell; --enable turns it on");
    verb->add_flag("--enable", *enable,
                   "Turn accessibility on for apps, for good, and name the apps to restart");
    verb->callback([enable, &outcome, &platform] {
        outcome.exitStatus = runAccessibility(platform, *enable);
    });
}

} // namespace lectorbell::cli
