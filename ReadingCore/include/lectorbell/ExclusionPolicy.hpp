#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace lectorbell::ExclusionPolicy {

// Applications for which reading is always off (password managers and the system keychain), as
// the platform identifies the frontmost application: bundle identifiers on macOS; on Linux also
// the accessibility-bus application names, X11 WM_CLASS names and desktop / flatpak ids.
std::span<const std::string_view> defaultExcluded();

// Pure: whether reading is off for the application. Compares whole identifiers, ignoring case,
// against the built-in list and then the user's own list; no identifier is never excluded.
bool isExcluded(const std::optional<std::string>& bundleID,
                std::span<const std::string> userExclusions);

} // namespace lectorbell::ExclusionPolicy
