#include "platform/linux/xdg/AppIdentities.hpp"

#include "platform/linux/xdg/ProcessApps.hpp"

namespace lectorbell::platform::xdg {

namespace {

std::optional<std::string> idFromWindowOrProcess(const WindowClues& clues) {
    if (clues.gtkApplicationID && !clues.gtkApplicationID->empty()) {
        return clues.gtkApplicationID;
    }
    if (clues.kdeDesktopFile && !clues.kdeDesktopFile->empty()) {
        return desktopIDOf(*clues.kdeDesktopFile);
    }
    return processAppID(clues.pid);
}

} // namespace

AppIdentity identifyApp(const WindowClues& clues, DesktopEntries& entries) {
    AppIdentity identity;
    identity.pid = clues.pid;
    std::optional<DesktopEntry> entry;
    if (std::optional<std::string> id = idFromWindowOrProcess(clues)) {
        entry = entries.byID(*id);
        // The id as the application gave it, even when no desktop file has it.
        identity.appID = entry ? entry->id : *id;
    } else if (clues.className || clues.instance) {
        entry = entries.byWindowClass(clues.className.value_or(""), clues.instance.value_or(""));
        if (entry) {
            identity.appID = entry->id;
        }
    }
    if (entry) {
        identity.displayName = entry->name;
    } else if (clues.className && !clues.className->empty()) {
        identity.displayName = *clues.className;
    } else {
        identity.displayName = unknownAppName;
    }
    return identity;
}

} // namespace lectorbell::platform::xdg
