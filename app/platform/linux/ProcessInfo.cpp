#include "platform/linux/ProcessInfo.hpp"

#include <array>
#include <fstream>
#include <string_view>

namespace lectorbell::atspi {

namespace {

std::string procPath(ProcessID pid, std::string_view file) {
    return "/proc/" + std::to_string(pid) + "/" + std::string{file};
}

// Files that only these toolkits map: Qt's GUI library, Chromium's resource pack (Chrome,
// Chromium, Edge, Brave and every Electron app), Firefox's engine.
constexpr std::array startupToolkitMarkers{
    std::string_view{"libQt5Gui.so"}, std::string_view{"libQt6Gui.so"},
    std::string_view{"resources.pak"}, std::string_view{"libxul.so"}};

} // namespace

std::string processName(ProcessID pid) {
    std::ifstream comm{procPath(pid, "comm")};
    std::string name;
    if (comm && std::getline(comm, name) && !name.empty()) {
        return name;
    }
    return "process " + std::to_string(pid);
}

bool readsAccessibilitySwitchAtStart(ProcessID pid) {
    std::ifstream maps{procPath(pid, "maps")};
    std::string line;
    while (maps && std::getline(maps, line)) {
        for (std::string_view marker : startupToolkitMarkers) {
            if (line.find(marker) != std::string::npos) {
                return true;
            }
        }
    }
    return false;
}

} // namespace lectorbell::atspi
