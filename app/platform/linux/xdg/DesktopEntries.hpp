#pragma once

#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lectorbell::platform::xdg {

// What an installed desktop file says about its application.
struct DesktopEntry {
    // The desktop application id: the file's path below its applications folder, without
    // ".desktop" and with "/" as "-" ("org.gnome.TextEditor", "kde-konsole").
    std::string id;
    std::string name;
    // The window class the application's windows carry, when the file names it.
    std::string startupWMClass;

    friend bool operator==(const DesktopEntry&, const DesktopEntry&) = default;
};

// The [Desktop Entry] group's Name and StartupWMClass; none for a file without a name or one
// marked Hidden (a deleted entry).
std::optional<DesktopEntry> parseDesktopEntry(std::string_view text);

// The id a desktop file's path or name stands for: "/usr/share/applications/org.gnome.Maps.desktop"
// and "org.gnome.Maps" both give "org.gnome.Maps".
std::string desktopIDOf(std::string_view pathOrName);

// The installed desktop files, indexed once and read again when a folder changes.
class DesktopEntries {
public:
    // Applications folders, the one that wins a clash first.
    explicit DesktopEntries(std::vector<std::filesystem::path> folders);
    // $XDG_DATA_HOME/applications, then each of $XDG_DATA_DIRS/applications (~/.local/share and
    // /usr/local/share:/usr/share when the variables are unset).
    static std::vector<std::filesystem::path> applicationFolders();

    // By id, exactly, else ignoring case.
    std::optional<DesktopEntry> byID(std::string_view id);
    // The entry for a window class (WM_CLASS's class and instance): its StartupWMClass, else an
    // id equal to one of them ignoring case, else an id whose last dotted part is
    // ("org.gnome.Gedit" for "gedit").
    std::optional<DesktopEntry> byWindowClass(std::string_view className,
                                              std::string_view instance);

private:
    void refreshLocked();

    std::vector<std::filesystem::path> folders_;
    std::mutex mutex_;
    std::vector<std::optional<std::filesystem::file_time_type>> seen_;
    bool indexed_ = false;
    std::map<std::string, DesktopEntry> entries_;
};

} // namespace lectorbell::platform::xdg
