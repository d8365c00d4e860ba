// GoogleTest comes before Xlib, whose macros (None, Bool) would break its headers.
// clang-format off
#include <gtest/gtest.h>
// clang-format on

#include "TestEnvironment.hpp"
#include "XvfbServer.hpp"
#include "platform/linux/LinuxSystemServices.hpp"
#include "platform/linux/x11/X11Connection.hpp"

#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace lectorbell::platform {
namespace {

namespace fs = std::filesystem;

// Windows that describe their applications in the ways applications do, on a private X server,
// with the applications' desktop files in a folder of their own.
class SystemServicesOnX11 : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        server = lectorbell::testing::XvfbServer::start(1000, 700).release();
        display = server != nullptr ? server->client() : nullptr;
    }
    static void TearDownTestSuite() { delete server; }

    void SetUp() override {
        LECTORBELL_REQUIRE_XVFB(server);
        folder = fs::temp_directory_path() / ("lectorbell-xdg-" + std::to_string(getpid()));
        fs::create_directories(folder / "applications");
        std::ofstream{folder / "applications/org.example.Notes.desktop"}
            << "[Desktop Entry]\nType=Application\nName=Example Notes\n";
        std::ofstream{folder / "applications/viewer.desktop"}
            << "[Desktop Entry]\nName=Pixel Viewer\nStartupWMClass=PixelViewer\n";
        services = std::make_unique<LinuxSystemServices>(x11::Connection::open(),
                                                         std::vector{folder / "applications"});
    }

    void TearDown() override {
        if (child > 0) {
            kill(child, SIGKILL);
            waitpid(child, nullptr, 0);
        }
        if (display != nullptr) {
            for (::Window window : windows) {
                XDestroyWindow(display, window);
            }
            XDeleteProperty(display, DefaultRootWindow(display),
                            XInternAtom(display, "_NET_ACTIVE_WINDOW", False));
            XSync(display, False);
        }
        fs::remove_all(folder);
    }

    struct Properties {
        long pid = 0;
        const char* gtkApplicationID = nullptr;
        const char* kdeDesktopFile = nullptr;
        const char* instance = nullptr;
        const char* className = nullptr;
    };

    ::Window makeWindow(int x, int y, const Properties& properties) {
        XSetWindowAttributes attributes{};
        attributes.override_redirect = True;
        ::Window window =
            XCreateWindow(display, DefaultRootWindow(display), x, y, 100, 80, 0, CopyFromParent,
                          InputOutput, CopyFromParent, CWOverrideRedirect, &attributes);
        if (properties.pid != 0) {
            XChangeProperty(display, window, XInternAtom(display, "_NET_WM_PID", False),
                            XA_CARDINAL, 32, PropModeReplace,
                            reinterpret_cast<const unsigned char*>(&properties.pid), 1);
        }
        setText(window, "_GTK_APPLICATION_ID", properties.gtkApplicationID);
        setText(window, "_KDE_NET_WM_DESKTOP_FILE", properties.kdeDesktopFile);
        if (properties.className != nullptr) {
            XClassHint hint{const_cast<char*>(properties.instance),
                            const_cast<char*>(properties.className)};
            XSetClassHint(display, window, &hint);
        }
        XMapRaised(display, window);
        XSync(display, False);
        windows.push_back(window);
        return window;
    }

    static void setText(::Window window, const char* name, const char* text) {
        if (text == nullptr) {
            return;
        }
        XChangeProperty(display, window, XInternAtom(display, name, False),
                        XInternAtom(display, "UTF8_STRING", False), 8, PropModeReplace,
                        reinterpret_cast<const unsigned char*>(text),
                        static_cast<int>(std::string{text}.size()));
    }

    static void activate(::Window window) {
        XChangeProperty(display, DefaultRootWindow(display),
                        XInternAtom(display, "_NET_ACTIVE_WINDOW", False), XA_WINDOW, 32,
                        PropModeReplace, reinterpret_cast<const unsigned char*>(&window), 1);
        XSync(display, False);
    }

    // A process started from a desktop file, as a desktop's launcher starts one.
    pid_t launchedFrom(const std::string& desktopFile) {
        child = fork();
        if (child == 0) {
            setenv("GIO_LAUNCHED_DESKTOP_FILE", desktopFile.c_str(), 1);
            setenv("GIO_LAUNCHED_DESKTOP_FILE_PID", std::to_string(getpid()).c_str(), 1);
            execlp("sleep", "sleep", "30", static_cast<char*>(nullptr));
            _exit(127);
        }
        // Its environment is readable once it runs sleep.
        for (int i = 0; i < 200; ++i) {
            std::ifstream environ{"/proc/" + std::to_string(child) + "/environ"};
            std::string text{std::istreambuf_iterator<char>{environ}, {}};
            if (text.find("GIO_LAUNCHED_DESKTOP_FILE=") != std::string::npos) {
                break;
            }
            usleep(5000);
        }
        return child;
    }

    static inline lectorbell::testing::XvfbServer* server = nullptr;
    static inline ::Display* display = nullptr;
    fs::path folder;
    std::unique_ptr<LinuxSystemServices> services;
    std::vector<::Window> windows;
    pid_t child = 0;
};

TEST_F(SystemServicesOnX11, WindowOwnersAreNamedByTheirWindowsProcessesAndDesktopFiles) {
    const long launched =
        launchedFrom((folder / "applications/org.example.Notes.desktop").string());
    struct Case {
        Properties properties;
        AppIdentity identity;
    };
    const Case cases[] = {
        {{4001, "org.example.Notes", nullptr, "notes", "Notes"},
         {4001, "org.example.Notes", "Example Notes"}},
        {{4002, nullptr, "viewer", "x", "X"}, {4002, "viewer", "Pixel Viewer"}},
        {{4003, nullptr, nullptr, "pixelviewer", "PixelViewer"}, {4003, "viewer", "Pixel Viewer"}},
        {{launched, nullptr, nullptr, "notes-bin", "Notes-bin"},
         {static_cast<ProcessID>(launched), "org.example.Notes", "Example Notes"}},
        {{4005, nullptr, nullptr, "mystery", "Mystery"}, {4005, std::nullopt, "Mystery"}},
        {{4006}, {4006, std::nullopt, "Unknown app"}},
    };
    int x = 0;
    for (const Case& c : cases) {
        makeWindow(x, 100, c.properties);
        EXPECT_EQ(services->windowOwner(ScreenPoint{x + 50.0, 140}), c.identity)
            << c.identity.displayName;
        x += 120;
    }
    EXPECT_EQ(services->windowOwner(ScreenPoint{900, 650}), std::nullopt);
}

TEST_F(SystemServicesOnX11, TheFrontApplicationIsTheActiveWindows) {
    ::Window notes = makeWindow(0, 0, {4001, "org.example.Notes", nullptr, "notes", "Notes"});
    ::Window ours = makeWindow(200, 0, {static_cast<long>(getpid()), nullptr, nullptr, "x", "X"});
    EXPECT_EQ(services->frontApplication(), std::nullopt);
    activate(notes);
    EXPECT_EQ(services->frontApplication(),
              (AppIdentity{4001, "org.example.Notes", "Example Notes"}));
    EXPECT_FALSE(services->isFrontApplication());
    activate(ours);
    EXPECT_TRUE(services->isFrontApplication());
    // A window that closed while it was the active one.
    XDestroyWindow(display, ours);
    windows.pop_back();
    XSync(display, False);
    EXPECT_EQ(services->frontApplication(), std::nullopt);
    EXPECT_FALSE(services->isFrontApplication());
}

TEST_F(SystemServicesOnX11, PointerAndPermissions) {
    XWarpPointer(display, None, DefaultRootWindow(display), 0, 0, 0, 0, 321, 123);
    XSync(display, False);
    EXPECT_EQ(services->pointerPosition(), (ScreenPoint{321, 123}));
    EXPECT_TRUE(services->screenCapturePermitted());
}

} // namespace
} // namespace lectorbell::platform
