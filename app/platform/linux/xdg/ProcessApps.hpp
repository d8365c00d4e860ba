#pragma once

// What a process says about the desktop application it belongs to: the sandbox it runs in
// (Flatpak, Snap) and the desktop file it was launched from.

#include "lectorbell/SelectionPolicy.hpp"

#include <optional>
#include <string>
#include <string_view>

namespace lectorbell::platform::xdg {

// The desktop id of a sandboxed app from its control groups (/proc/PID/cgroup):
// "app-flatpak-org.gnome.Calculator-4242.scope" gives "org.gnome.Calculator",
// "snap.firefox.firefox-<uuid>.scope" gives "firefox_firefox" (the id of a snap's desktop file).
std::optional<std::string> sandboxAppID(std::string_view cgroups);

// The desktop id named by a process's environment (/proc/PID/environ, NUL-separated):
// FLATPAK_ID, else GIO_LAUNCHED_DESKTOP_FILE (unless GIO_LAUNCHED_DESKTOP_FILE_PID names another
// process, which means the variable was inherited from the one that was launched), else
// BAMF_DESKTOP_FILE_HINT.
std::optional<std::string> launchedAppID(std::string_view environment, ProcessID pid);

// Both of the above, read from /proc; none for a process that is gone or not ours to read.
std::optional<std::string> processAppID(ProcessID pid);

} // namespace lectorbell::platform::xdg
