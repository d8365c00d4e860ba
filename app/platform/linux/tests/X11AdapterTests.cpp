// GoogleTest comes before Xlib, whose macros (None, Bool) would break its headers.
// clang-format off
#include <gtest/gtest.h>
// clang-format on

#include "TestEnvironment.hpp"
#include "XvfbServer.hpp"
#include "platform/linux/x11/X11Connection.hpp"
#include "platform/linux/x11/X11ScreenCapturer.hpp"
#include "platform/linux/x11/X11WindowLocator.hpp"

#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace lectorbell::platform::x11 {
namespace {

// A window drawn with a known pattern, on a private X server.
class X11Adapters : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        server = lectorbell::testing::XvfbServer::start(1280, 800).release();
        display = server != nullptr ? server->client() : nullptr;
    }
    static void TearDownTestSuite() { delete server; }
    void SetUp() override {
        LECTORBELL_REQUIRE_XVFB(server);
        connection = x11::Connection::open();
        ASSERT_TRUE(connection);
    }
    void TearDown() override {
        if (display == nullptr) {
            return;
        }
        for (::Window window : windows) {
            XDestroyWindow(display, window);
        }
        XDeleteProperty(display, DefaultRootWindow(display),
                        XInternAtom(display, "_NET_CLIENT_LIST_STACKING", False));
        XSync(display, False);
    }

    // Each pixel's colour is a function of its screen position, so a shifted or stale image
    // cannot match by accident.
    static std::uint32_t patternAt(int x, int y) {
        return static_cast<std::uint32_t>(((x * 7) & 0xFF) << 16 | ((y * 3) & 0xFF) << 8 |
                                          ((x + y) & 0xFF));
    }

    ::Window makeWindow(int x, int y, int width, int height, bool paint = true) {
        XSetWindowAttributes attributes{};
        attributes.override_redirect = True;
        attributes.background_pixmap = None;
        ::Window window =
            XCreateWindow(display, DefaultRootWindow(display), x, y, static_cast<unsigned>(width),
                          static_cast<unsigned>(height), 0, CopyFromParent, InputOutput,
                          CopyFromParent, CWOverrideRedirect | CWBackPixmap, &attributes);
        windows.push_back(window);
        XMapRaised(display, window);
        XSync(display, False);
        if (paint) {
            GC gc = XCreateGC(display, window, 0, nullptr);
            for (int row = 0; row < height; ++row) {
                for (int column = 0; column < width; ++column) {
                    XSetForeground(display, gc, patternAt(x + column, y + row));
                    XDrawPoint(display, window, gc, column, row);
                }
            }
            XFreeGC(display, gc);
        }
        XSync(display, False);
        return window;
    }

    void setCardinal(::Window window, const char* name, unsigned long value) {
        XChangeProperty(display, window, XInternAtom(display, name, False), XA_CARDINAL, 32,
                        PropModeReplace, reinterpret_cast<unsigned char*>(&value), 1);
        XSync(display, False);
    }

    static std::uint32_t pixelAt(const PixelBuffer& image, int x, int y) {
        const std::uint8_t* p = &image.bytes[static_cast<std::size_t>((y * image.width + x) * 4)];
        return static_cast<std::uint32_t>(p[0] << 16 | p[1] << 8 | p[2]);
    }

    static inline lectorbell::testing::XvfbServer* server = nullptr;
    static inline ::Display* display = nullptr;
    std::shared_ptr<x11::Connection> connection;
    std::vector<::Window> windows;
};

TEST_F(X11Adapters, CaptureHoldsTheWindowsPixelsAndNoPointer) {
    makeWindow(100, 120, 300, 160);
    // The pointer rests in the middle of the captured area.
    XWarpPointer(display, None, DefaultRootWindow(display), 0, 0, 0, 0, 250, 200);
    XSync(display, False);
    X11ScreenCapturer capturer{connection};
    CaptureResult result = capturer.capture(ScreenRect{100, 120, 300, 160});
    ASSERT_TRUE(std::holds_alternative<PixelBuffer>(result));
    const auto& image = std::get<PixelBuffer>(result);
    ASSERT_TRUE(image.isWellFormed());
    EXPECT_EQ(image.area, ScreenRect(100, 120, 300, 160));
    int wrong = 0;
    for (int y = 0; y < 160; ++y) {
        for (int x = 0; x < 300; ++x) {
            wrong += pixelAt(image, x, y) != patternAt(100 + x, 120 + y) ? 1 : 0;
        }
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(image.bytes[3], 255);
}

TEST_F(X11Adapters, RegionsAreClippedToTheScreen) {
    X11ScreenCapturer capturer{connection};
    struct Case {
        ScreenRect region;
        std::optional<ScreenRect> area;
    };
    const Case cases[] = {
        {{1200, 700, 200, 200}, ScreenRect{1200, 700, 80, 100}},
        {{-50, -20, 100, 60}, ScreenRect{0, 0, 50, 40}},
        {{10.4, 10.6, 5.2, 5}, ScreenRect{10, 10, 6, 6}},
        {{2000, 100, 50, 50}, std::nullopt},
        {{10, 10, 0, 40}, std::nullopt},
        {{NAN, 10, 20, 20}, std::nullopt},
    };
    for (const Case& c : cases) {
        CaptureResult result = capturer.capture(c.region);
        if (c.area) {
            ASSERT_TRUE(std::holds_alternative<PixelBuffer>(result));
            EXPECT_EQ(std::get<PixelBuffer>(result).area, *c.area);
        } else {
            ASSERT_TRUE(std::holds_alternative<CaptureFailure>(result));
            EXPECT_EQ(std::get<CaptureFailure>(result).kind, CaptureFailure::Kind::emptyRegion);
        }
    }
}

TEST_F(X11Adapters, LocatorTakesTheFrontmostVisibleWindow) {
    ::Window back = makeWindow(50, 50, 400, 300);
    ::Window front = makeWindow(100, 100, 200, 100);
    setCardinal(front, "_NET_WM_PID", 4242);
    ::Window overlay = makeWindow(0, 0, 600, 600, false);
    setCardinal(overlay, "_NET_WM_WINDOW_OPACITY", 0);
    ::Window hidden = makeWindow(60, 60, 100, 100);
    XUnmapWindow(display, hidden);
    XSync(display, False);

    X11WindowLocator locator{connection};
    std::optional<TargetWindow> found = locator.window({150, 150});
    ASSERT_TRUE(found);
    EXPECT_EQ(found->windowID, front);
    EXPECT_EQ(found->pid, 4242);
    EXPECT_EQ(found->frame, ScreenRect(100, 100, 200, 100));

    found = locator.window({70, 70}); // under the unmapped window and the overlay
    ASSERT_TRUE(found);
    EXPECT_EQ(found->windowID, back);
    EXPECT_EQ(found->pid, 0);

    // A faint but visible overlay is a window like any other.
    setCardinal(overlay, "_NET_WM_WINDOW_OPACITY", 0x10000000);
    found = locator.window({70, 70});
    ASSERT_TRUE(found);
    EXPECT_EQ(found->windowID, overlay);
    EXPECT_FALSE(locator.window({900, 700}));
}

TEST_F(X11Adapters, LocatorFollowsTheWindowManagersStackingList) {
    ::Window a = makeWindow(100, 100, 200, 200);
    ::Window b = makeWindow(150, 150, 200, 200);
    // The window manager says `a` is on top (the list runs bottom to top).
    unsigned long stacking[] = {b, a};
    XChangeProperty(display, DefaultRootWindow(display),
                    XInternAtom(display, "_NET_CLIENT_LIST_STACKING", False), XA_WINDOW, 32,
                    PropModeReplace, reinterpret_cast<unsigned char*>(stacking), 2);
    XSync(display, False);
    X11WindowLocator locator{connection};
    std::optional<TargetWindow> found = locator.window({200, 200});
    ASSERT_TRUE(found);
    EXPECT_EQ(found->windowID, a);
}

TEST(X11AdaptersWithoutDisplay, ReportNoScreenAccess) {
    X11ScreenCapturer capturer{nullptr};
    CaptureResult result = capturer.capture(ScreenRect{0, 0, 10, 10});
    ASSERT_TRUE(std::holds_alternative<CaptureFailure>(result));
    EXPECT_EQ(std::get<CaptureFailure>(result).kind, CaptureFailure::Kind::noScreenAccess);
    X11WindowLocator locator{nullptr};
    EXPECT_FALSE(locator.window({1, 1}));
}

} // namespace
} // namespace lectorbell::platform::x11
