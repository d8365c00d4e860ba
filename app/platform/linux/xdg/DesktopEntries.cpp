#include "platform/linux/xdg/DesktopEntries.hpp"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <system_error>

namespace lectorbell::platform::xdg {

namespace fs = std::filesystem;

namespace {

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t\r");
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

bool equalIgnoringCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) ==
                      std::tolower(static_cast<unsigned char>(y));
           });
}

std::string_view lastDottedPart(std::string_view id) {
    const auto dot = id.rfind('.');
    return dot == std::string_view::npos ? id : id.substr(dot + 1);
}

std::optional<std::string> readFile(const fs::path& path) {
    std::ifstream file{path, std::ios::binary};
    if (!file) {
        return std::nullopt;
    }
    std::ostringstream text;
    text << file.rdbuf();
    return std::move(text).str();
}

std::optional<fs::file_time_type> modified(const fs::path& folder) {
    std::error_code error;
    fs::file_time_type time = fs::last_write_time(folder, error);
    if (error) {
        return std::nullopt;
    }
    return time;
}

} // namespace

std::optional<DesktopEntry> parseDesktopEntry(std::string_view text) {
    DesktopEntry entry;
    bool inEntry = false;
    bool hidden = false;
    while (!text.empty()) {
        const auto end = text.find('\n');
        std::string_view line = trimmed(text.substr(0, end));
        text = end == std::string_view::npos ? std::string_view{} : text.substr(end + 1);
        if (line.empty() || line.front() == '#') {
            continue;
        }
        if (line.front() == '[') {
            // Only the first group describes the application; actions follow in their own.
            if (inEntry) {
                break;
            }
            inEntry = line == "[Desktop Entry]";
            continue;
        }
        const auto equals = line.find('=');
        if (!inEntry || equals == std::string_view::npos) {
            continue;
        }
        const std::string_view key = trimmed(line.substr(0, equals));
        const std::string_view value = trimmed(line.substr(equals + 1));
        if (key == "Name") {
            entry.name = value;
        } else if (key == "StartupWMClass") {
            entry.startupWMClass = value;
        } else if (key == "Hidden") {
            hidden = value == "true";
        }
    }
    if (entry.name.empty() || hidden) {
        return std::nullopt;
    }
    return entry;
}

std::string desktopIDOf(std::string_view pathOrName) {
    const auto slash = pathOrName.rfind('/');
    std::string_view name =
        slash == std::string_view::npos ? pathOrName : pathOrName.substr(slash + 1);
    constexpr std::string_view suffix = ".desktop";
    if (name.size() > suffix.size() && name.substr(name.size() - suffix.size()) == suffix) {
        name.remove_suffix(suffix.size());
    }
    return std::string{name};
}

DesktopEntries::DesktopEntries(std::vector<fs::path> folders)
    : folders_(std::move(folders)) {}

std::vector<fs::path> DesktopEntries::applicationFolders() {
    std::vector<fs::path> folders;
    const char* dataHome = std::getenv("XDG_DATA_HOME");
    const char* home = std::getenv("HOME");
    if (dataHome != nullptr && *dataHome == '/') {
        folders.emplace_back(fs::path{dataHome} / "applications");
    } else if (home != nullptr && *home != '\0') {
        folders.emplace_back(fs::path{home} / ".local/share/applications");
    }
    const char* dataDirs = std::getenv("XDG_DATA_DIRS");
    std::string_view rest =
        dataDirs != nullptr && *dataDirs != '\0' ? dataDirs : "/usr/local/share:/usr/share";
    while (!rest.empty()) {
        const auto colon = rest.find(':');
        const std::string_view folder = rest.substr(0, colon);
        if (!folder.empty() && folder.front() == '/') {
            folders.emplace_back(fs::path{folder} / "applications");
        }
        rest = colon == std::string_view::npos ? std::string_view{} : rest.substr(colon + 1);
    }
    return folders;
}

void DesktopEntries::refreshLocked() {
    std::vector<std::optional<fs::file_time_type>> times;
    times.reserve(folders_.size());
    for (const fs::path& folder : folders_) {
        times.push_back(modified(folder));
    }
    if (indexed_ && times == seen_) {
        return;
    }
    seen_ = std::move(times);
    indexed_ = true;
    entries_.clear();
    for (const fs::path& folder : folders_) {
        std::error_code error;
        for (fs::recursive_directory_iterator it{folder, error}, end; !error && it != end;
             it.increment(error)) {
            if (!it->is_regular_file(error) || it->path().extension() != ".desktop") {
                continue;
            }
            std::string id = it->path().lexically_relative(folder).string();
            std::replace(id.begin(), id.end(), '/', '-');
            id = desktopIDOf(id);
            // An earlier folder's file with the same id hides this one.
            if (entries_.contains(id)) {
                continue;
            }
            std::optional<std::string> text = readFile(it->path());
            std::optional<DesktopEntry> entry = text ? parseDesktopEntry(*text) : std::nullopt;
            if (entry) {
                entry->id = id;
                entries_.emplace(id, std::move(*entry));
            }
        }
    }
}

std::optional<DesktopEntry> DesktopEntries::byID(std::string_view id) {
    std::lock_guard lock{mutex_};
    refreshLocked();
    if (auto found = entries_.find(std::string{id}); found != entries_.end()) {
        return found->second;
    }
    for (const auto& [key, entry] : entries_) {
        if (equalIgnoringCase(key, id)) {
            return entry;
        }
    }
    return std::nullopt;
}

std::optional<DesktopEntry> DesktopEntries::byWindowClass(std::string_view className,
                                                          std::string_view instance) {
    std::lock_guard lock{mutex_};
    refreshLocked();
    const std::string_view names[] = {className, instance};
    for (std::string_view name : names) {
        for (const auto& [id, entry] : entries_) {
            if (!name.empty() && entry.startupWMClass == name) {
                return entry;
            }
        }
    }
    for (std::string_view name : names) {
        for (const auto& [id, entry] : entries_) {
            if (!name.empty() && equalIgnoringCase(id, name)) {
                return entry;
            }
        }
    }
    for (std::string_view name : names) {
        for (const auto& [id, entry] : entries_) {
            if (!name.empty() && equalIgnoringCase(lastDottedPart(id), name)) {
                return entry;
            }
        }
    }
    return std::nullopt;
}

} // namespace lectorbell::platform::xdg
