#include "platform/linux/ProcessInfo.hpp"

#include <array>
#include <fstream>
#include <string_view>

namespace lectorbell::atspi {

namespace {

std::string procPath(ProcessID pid, std::string_view file) {
    return "/proc/" + std::to_string(pid) + "/" + std::string{file};
}

struct ToolkitMarker {
    std::string_view file;
    StartupToolkit toolkit;
};

// Files that only these toolkits map: Qt's GUI library, Chromium's resource pack (Chrome,
// Chromium, Edge, Brave and every Electron app), Firefox's engine.
constexpr std::array toolkitMarkers{ToolkitMarker{"libQt5Gui.so", StartupToolkit::qt},
                                    ToolkitMarker{"libQt6Gui.so", StartupToolkit::qt},
                                    ToolkitMarker{"resources.pak", StartupToolkit::chromium},
                                    ToolkitMarker{"libxul.so", StartupToolkit::firefox}};

} // namespace

std::string processName(ProcessID pid) {
    std::ifstream comm{procPath(pid, "comm")};
    std::string name;
    if (comm && std::getline(comm, name) && !name.empty()) {
        return name;
    }
    return "process " + std::to_string(pid);
}

bool startedWith(ProcessID pid, std::string_view option) {
    std::ifstream cmdline{procPath(pid, "cmdline")};
    std::string argument;
    while (cmdline && std::getline(cmdline, argument, '\0')) {
        if (argument == option) {
            return true;
        }
    }
    return false;
}

StartupToolkit startupToolkit(ProcessID pid) {
    std::ifstream maps{procPath(pid, "maps")};
    std::string line;
    while (maps && std::getline(maps, line)) {
        for (const ToolkitMarker& marker : toolkitMarkers) {
            if (line.find(marker.file) != std::string::npos) {
                return marker.toolkit;
            }
        }
    }
    return StartupToolkit::none;
}

} // namespace lectorbell::atspi
