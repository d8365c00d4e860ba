#include "platform/linux/xdg/AppIdentities.hpp"
#include "platform/linux/xdg/DesktopEntries.hpp"
#include "platform/linux/xdg/ProcessApps.hpp"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

namespace lectorbell::platform::xdg {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

TEST(DesktopEntryFile, NameAndWindowClassComeFromTheMainGroupOnly) {
    struct Case {
        std::string text;
        std::optional<DesktopEntry> entry;
    };
    const Case cases[] = {
        {"[Desktop Entry]\nName=Text Editor\nStartupWMClass=gnome-text-editor\n",
         DesktopEntry{"", "Text Editor", "gnome-text-editor"}},
        // Spaces around '=', CRLF, comments and localised names.
        {"# c\r\n[Desktop Entry]\r\nName[de]=Texteditor\r\n Name = Editor \r\n",
         DesktopEntry{"", "Editor", ""}},
        // An action's name is not the application's.
        {"[Desktop Entry]\nType=Application\n[Desktop Action new]\nName=New Window\n",
         std::nullopt},
        {"[Desktop Action new]\nName=New Window\n[Desktop Entry]\nName=Files\n",
         DesktopEntry{"", "Files", ""}},
        {"[Desktop Entry]\nName=Gone\nHidden=true\n", std::nullopt},
        {"Name=No group\n", std::nullopt},
        {"", std::nullopt},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(parseDesktopEntry(c.text), c.entry) << c.text;
    }
}

TEST(DesktopEntryFile, IdsFromPathsAndNames) {
    EXPECT_EQ(desktopIDOf("/usr/share/applications/org.gnome.Maps.desktop"), "org.gnome.Maps");
    EXPECT_EQ(desktopIDOf("org.kde.dolphin"), "org.kde.dolphin");
    EXPECT_EQ(desktopIDOf("firefox.desktop"), "firefox");
    EXPECT_EQ(desktopIDOf(".desktop"), ".desktop");
}

TEST(ProcessApps, SandboxIdsFromControlGroups) {
    struct Case {
        std::string cgroups;
        std::optional<std::string> id;
    };
    const Case cases[] = {
        {"0::/user.slice/user-1000.slice/user@1000.service/app.slice/"
         "app-flatpak-org.gnome.Calculator-4242.scope\n",
         "org.gnome.Calculator"},
        {"0::/user.slice/user-1000.slice/user@1000.service/app.slice/"
         "snap.firefox.firefox-2f0e6f10-96a3-4c4b-b3c5-4d1c5cbd4a5a.scope\n",
         "firefox_firefox"},
        {"12:pids:/user.slice\n1:name=systemd:/snap.code.code.5c1e.scope\n", "code_code"},
        // An ordinary desktop launch names no sandbox.
        {"0::/user.slice/user-1000.slice/user@1000.service/app.slice/"
         "app-gnome-org.gnome.TextEditor-3312.scope\n",
         std::nullopt},
        {"0::/init.scope\n", std::nullopt},
        {"0::/app-flatpak-.scope\n", std::nullopt},
        {"", std::nullopt},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(sandboxAppID(c.cgroups), c.id) << c.cgroups;
    }
}

TEST(ProcessApps, LaunchIdsFromTheEnvironment) {
    struct Case {
        std::string environment;
        std::optional<std::string> id;
    };
    const Case cases[] = {
        {"HOME=/h\0GIO_LAUNCHED_DESKTOP_FILE=/usr/share/applications/org.gnome.Maps.desktop\0"
         "GIO_LAUNCHED_DESKTOP_FILE_PID=77\0"s,
         "org.gnome.Maps"},
        // Inherited from the terminal it was started in: not this process's own launch.
        {"GIO_LAUNCHED_DESKTOP_FILE=/usr/share/applications/org.gnome.Terminal.desktop\0"
         "GIO_LAUNCHED_DESKTOP_FILE_PID=12\0"s,
         std::nullopt},
        {"GIO_LAUNCHED_DESKTOP_FILE=/x/viewer.desktop\0"s, "viewer"},
        {"BAMF_DESKTOP_FILE_HINT=/var/lib/snapd/desktop/applications/vlc_vlc.desktop\0"s,
         "vlc_vlc"},
        {"FLATPAK_ID=org.gimp.GIMP\0GIO_LAUNCHED_DESKTOP_FILE=/x/other.desktop\0"s,
         "org.gimp.GIMP"},
        // A variable whose name only starts like one we read.
        {"GIO_LAUNCHED_DESKTOP_FILE_X=/x/a.desktop\0FLATPAK_ID=\0"s, std::nullopt},
        {""s, std::nullopt},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(launchedAppID(c.environment, 77), c.id) << c.environment;
    }
}

// Applications folders in a temporary directory: a user folder that wins over a system one.
class DesktopFolders : public ::testing::Test {
protected:
    void SetUp() override {
        root = fs::temp_directory_path() / ("lectorbell-apps-" + std::to_string(getpid()));
        fs::remove_all(root);
        write("user/org.example.Notes.desktop", "[Desktop Entry]\nName=My Notes\n");
        write("system/org.example.Notes.desktop", "[Desktop Entry]\nName=Notes\n");
        write("system/viewer.desktop",
              "[Desktop Entry]\nName=Pixel Viewer\nStartupWMClass=PixelViewer\n");
        write("system/org.gnome.Gedit.desktop", "[Desktop Entry]\nName=gedit\n");
        write("system/kde/konsole.desktop", "[Desktop Entry]\nName=Konsole\n");
        write("system/readme.txt", "[Desktop Entry]\nName=Not an entry\n");
    }
    void TearDown() override { fs::remove_all(root); }

    void write(const std::string& path, const std::string& text) {
        fs::create_directories((root / path).parent_path());
        std::ofstream{root / path} << text;
    }

    fs::path root;
};

TEST_F(DesktopFolders, EntriesByIdAndByWindowClass) {
    DesktopEntries entries{{root / "user", root / "system", root / "missing"}};
    EXPECT_EQ(entries.byID("org.example.Notes")->name, "My Notes");
    EXPECT_EQ(entries.byID("ORG.EXAMPLE.NOTES")->name, "My Notes");
    EXPECT_EQ(entries.byID("kde-konsole")->name, "Konsole");
    EXPECT_FALSE(entries.byID("readme"));

    struct Case {
        const char* className;
        const char* instance;
        std::optional<std::string> id;
    };
    const Case cases[] = {
        {"PixelViewer", "pixelviewer", "viewer"}, // StartupWMClass
        {"Other", "PixelViewer", "viewer"},       // … by the instance too
        {"Viewer", "viewer-bin", "viewer"},       // the id, ignoring case
        {"Gedit", "gedit", "org.gnome.Gedit"},    // the id's last part
        {"Mystery", "mystery", std::nullopt},     {"", "", std::nullopt},
    };
    for (const Case& c : cases) {
        std::optional<DesktopEntry> entry = entries.byWindowClass(c.className, c.instance);
        EXPECT_EQ(entry ? std::optional{entry->id} : std::nullopt, c.id) << c.className;
    }
}

TEST_F(DesktopFolders, AnApplicationInstalledLaterIsFound) {
    DesktopEntries entries{{root / "user", root / "system"}};
    EXPECT_FALSE(entries.byID("org.example.Late"));
    // Folder times are kept to the filesystem's resolution; make the change visible.
    fs::last_write_time(root / "user", fs::file_time_type::clock::now() - std::chrono::hours{1});
    EXPECT_FALSE(entries.byID("org.example.Late"));
    write("user/org.example.Late.desktop", "[Desktop Entry]\nName=Late\n");
    EXPECT_EQ(entries.byID("org.example.Late")->name, "Late");
}

TEST_F(DesktopFolders, IdentitiesFromWindowClues) {
    DesktopEntries entries{{root / "user", root / "system"}};
    struct Case {
        WindowClues clues;
        AppIdentity identity;
    };
    const Case cases[] = {
        {{0, "org.example.Notes", std::nullopt, "Notes", "notes"},
         {0, "org.example.Notes", "My Notes"}},
        // An application id without an installed file keeps the id, named by its class.
        {{0, "org.example.Unlisted", std::nullopt, "Unlisted", "unlisted"},
         {0, "org.example.Unlisted", "Unlisted"}},
        {{0, std::nullopt, "/usr/share/applications/viewer.desktop", std::nullopt, std::nullopt},
         {0, "viewer", "Pixel Viewer"}},
        {{0, std::nullopt, std::nullopt, "PixelViewer", "pixelviewer"},
         {0, "viewer", "Pixel Viewer"}},
        {{0, std::nullopt, std::nullopt, "Mystery", "mystery"}, {0, std::nullopt, "Mystery"}},
        {{0, std::nullopt, std::nullopt, std::nullopt, std::nullopt},
         {0, std::nullopt, "Unknown app"}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(identifyApp(c.clues, entries), c.identity) << c.identity.displayName;
    }
}

} // namespace
} // namespace lectorbell::platform::xdg
