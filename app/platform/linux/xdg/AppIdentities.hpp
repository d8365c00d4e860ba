#pragma once

#include "platform/SystemServices.hpp"
#include "platform/linux/xdg/DesktopEntries.hpp"

#include <optional>
#include <string>

namespace lectorbell::platform::xdg {

// What a window tells about its application.
struct WindowClues {
    // _NET_WM_PID; 0 when absent.
    ProcessID pid = 0;
    // _GTK_APPLICATION_ID: the id a GTK application registered under.
    std::optional<std::string> gtkApplicationID;
    // _KDE_NET_WM_DESKTOP_FILE: the desktop file a KDE application names.
    std::optional<std::string> kdeDesktopFile;
    // WM_CLASS: its class ("Gnome-text-editor") and instance ("gnome-text-editor").
    std::optional<std::string> className;
    std::optional<std::string> instance;
};

// The application behind a window: its id from the window's own application id, its sandbox,
// the desktop file it was launched from (read from /proc), or its class matched against the
// installed desktop files; its name from that desktop file, else the window's class, else
// "Unknown app".
AppIdentity identifyApp(const WindowClues& clues, DesktopEntries& entries);

} // namespace lectorbell::platform::xdg
