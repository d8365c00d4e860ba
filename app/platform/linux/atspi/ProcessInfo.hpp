#pragma once

#include "lectorbell/SelectionPolicy.hpp"

#include <optional>
#include <string>
#include <string_view>

namespace lectorbell::platform::atspi {

// The process's short name (its command name); none when it cannot be read.
std::optional<std::string> processName(ProcessID pid);

// Toolkits that decide only as they start whether to expose their accessibility trees:
// switching accessibility on later does not reach them. GTK exposes its tree always.
enum class StartupToolkit {
    none,
    qt,
    firefox,
    // Chromium, Chrome, Edge, Brave and Electron apps: web content only with
    // --force-renderer-accessibility, whatever the desktop's switch says.
    chromium,
};

StartupToolkit startupToolkit(ProcessID pid);

// Whether the process's command line holds `option` as one of its arguments (alone or as
// "option=value").
bool startedWith(ProcessID pid, std::string_view option);

// What a Chromium-family app must be started with to expose its pages.
inline constexpr const char* chromiumAccessibilityOption = "--force-renderer-accessibility";

} // namespace lectorbell::platform::atspi
