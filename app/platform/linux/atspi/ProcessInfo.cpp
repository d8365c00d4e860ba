#include "platform/linux/atspi/ProcessInfo.hpp"

#include <array>
#include <fstream>
#include <string_view>

namespace lectorbell::platform::atspi {

namespace {

std::string procPath(ProcessID pid, std::string_view file) {
    return "/proc/" + std::to_string(pid) + "/" + std::string{file};
}

struct ToolkitMarker {
    // The end of a mapped file's path.
    std::string_view file;
    StartupToolkit toolkit;
};

// Files that only these toolkits map: Qt's GUI library, Chromium's resource pack (Chrome,
// Chromium, Edge, Brave and every Electron app), Firefox's engine. Qt comes first: a Qt app
// with a web view maps Qt WebEngine's own pack too, and it is Qt that decides.
constexpr std::array toolkitMarkers{ToolkitMarker{"/libQt5Gui.so.5", StartupToolkit::qt},
                                    ToolkitMarker{"/libQt6Gui.so.6", StartupToolkit::qt},
                                    ToolkitMarker{"/libxul.so", StartupToolkit::firefox},
                                    ToolkitMarker{"/resources.pak", StartupToolkit::chromium}};

bool endsWith(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

} // namespace

std::optional<std::string> processName(ProcessID pid) {
    std::ifstream comm{procPath(pid, "comm")};
    std::string name;
    if (comm && std::getline(comm, name) && !name.empty()) {
        return name;
    }
    return std::nullopt;
}

bool startedWith(ProcessID pid, std::string_view option) {
    std::ifstream cmdline{procPath(pid, "cmdline")};
    std::string argument;
    while (cmdline && std::getline(cmdline, argument, '\0')) {
        if (argument == option ||
            (argument.size() > option.size() && argument.compare(0, option.size(), option) == 0 &&
             argument[option.size()] == '=')) {
            return true;
        }
    }
    return false;
}

StartupToolkit startupToolkit(ProcessID pid) {
    std::ifstream maps{procPath(pid, "maps")};
    std::string line;
    std::size_t best = toolkitMarkers.size();
    while (maps && std::getline(maps, line)) {
        // A library's mapping may carry a minor version after the marker ("libQt6Gui.so.6.4.2").
        for (std::size_t i = 0; i < best; ++i) {
            std::string_view file = toolkitMarkers[i].file;
            std::size_t at = line.find(file);
            if (at != std::string::npos &&
                (endsWith(line, file) || line[at + file.size()] == '.')) {
                best = i;
                break;
            }
        }
    }
    return best < toolkitMarkers.size() ? toolkitMarkers[best].toolkit : StartupToolkit::none;
}

} // namespace lectorbell::platform::atspi
