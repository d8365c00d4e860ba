#include "platform/linux/xdg/ProcessApps.hpp"

#include "platform/linux/xdg/DesktopEntries.hpp"

#include <fstream>
#include <sstream>

namespace lectorbell::platform::xdg {

namespace {

std::optional<std::string> procFile(ProcessID pid, const char* name) {
    std::ifstream file{"/proc/" + std::to_string(pid) + "/" + name, std::ios::binary};
    if (!file) {
        return std::nullopt;
    }
    std::ostringstream text;
    text << file.rdbuf();
    return std::move(text).str();
}

// The value of `name` in a NUL-separated environment block.
std::optional<std::string_view> variable(std::string_view environment, std::string_view name) {
    while (!environment.empty()) {
        const auto end = environment.find('\0');
        const std::string_view entry = environment.substr(0, end);
        if (entry.size() > name.size() && entry.substr(0, name.size()) == name &&
            entry[name.size()] == '=') {
            return entry.substr(name.size() + 1);
        }
        environment =
            end == std::string_view::npos ? std::string_view{} : environment.substr(end + 1);
    }
    return std::nullopt;
}

std::optional<std::string> nonEmpty(std::string text) {
    return text.empty() ? std::nullopt : std::optional{std::move(text)};
}

// A scope unit's name from a cgroup path: the last path component ending in ".scope".
std::optional<std::string_view> scopeOf(std::string_view line) {
    const auto slash = line.rfind('/');
    std::string_view unit = slash == std::string_view::npos ? line : line.substr(slash + 1);
    constexpr std::string_view suffix = ".scope";
    if (unit.size() <= suffix.size() || unit.substr(unit.size() - suffix.size()) != suffix) {
        return std::nullopt;
    }
    unit.remove_suffix(suffix.size());
    return unit;
}

} // namespace

std::optional<std::string> sandboxAppID(std::string_view cgroups) {
    while (!cgroups.empty()) {
        const auto end = cgroups.find('\n');
        std::optional<std::string_view> scope = scopeOf(cgroups.substr(0, end));
        cgroups = end == std::string_view::npos ? std::string_view{} : cgroups.substr(end + 1);
        if (!scope) {
            continue;
        }
        // app-flatpak-<id>-<instance>
        constexpr std::string_view flatpak = "app-flatpak-";
        if (scope->starts_with(flatpak)) {
            std::string_view rest = scope->substr(flatpak.size());
            const auto dash = rest.rfind('-');
            if (dash != std::string_view::npos && dash > 0) {
                return std::string{rest.substr(0, dash)};
            }
            continue;
        }
        // snap.<snap>.<app>-<uuid> (or .<uuid> with older snapd); neither name holds a dot.
        constexpr std::string_view snap = "snap.";
        if (scope->starts_with(snap)) {
            std::string_view rest = scope->substr(snap.size());
            const auto dot = rest.find('.');
            if (dot == std::string_view::npos || dot == 0) {
                continue;
            }
            std::string_view app = rest.substr(dot + 1);
            app = app.substr(0, app.find_first_of("-."));
            if (!app.empty()) {
                return std::string{rest.substr(0, dot)} + "_" + std::string{app};
            }
        }
    }
    return std::nullopt;
}

std::optional<std::string> launchedAppID(std::string_view environment, ProcessID pid) {
    if (std::optional<std::string_view> flatpak = variable(environment, "FLATPAK_ID")) {
        if (auto id = nonEmpty(std::string{*flatpak})) {
            return id;
        }
    }
    if (std::optional<std::string_view> file = variable(environment, "GIO_LAUNCHED_DESKTOP_FILE")) {
        std::optional<std::string_view> launched =
            variable(environment, "GIO_LAUNCHED_DESKTOP_FILE_PID");
        if (!launched || *launched == std::to_string(pid)) {
            if (auto id = nonEmpty(desktopIDOf(*file))) {
                return id;
            }
        }
    }
    if (std::optional<std::string_view> hint = variable(environment, "BAMF_DESKTOP_FILE_HINT")) {
        return nonEmpty(desktopIDOf(*hint));
    }
    return std::nullopt;
}

std::optional<std::string> processAppID(ProcessID pid) {
    if (pid <= 0) {
        return std::nullopt;
    }
    if (std::optional<std::string> cgroups = procFile(pid, "cgroup")) {
        if (std::optional<std::string> id = sandboxAppID(*cgroups)) {
            return id;
        }
    }
    std::optional<std::string> environment = procFile(pid, "environ");
    return environment ? launchedAppID(*environment, pid) : std::nullopt;
}

} // namespace lectorbell::platform::xdg
