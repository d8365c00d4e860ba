#include "platform/linux/x11/X11ScreenCapturer.hpp"

#include "platform/linux/x11/X11Connection.hpp"

#include <X11/Xutil.h>
#include <X11/extensions/XShm.h>
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <sys/ipc.h>
#include <sys/shm.h>
#include <utility>

namespace lectorbell::platform::x11 {

namespace {

struct PixelArea {
    int x = 0;
    int y = 0;
    unsigned width = 0;
    unsigned height = 0;
};

// The whole pixels that cover the region, clipped to the screen.
std::optional<PixelArea> clippedArea(const ScreenRect& region, int screenWidth, int screenHeight) {
    double left = std::max(std::floor(region.minX()), 0.0);
    double top = std::max(std::floor(region.minY()), 0.0);
    double right = std::min(std::ceil(region.maxX()), static_cast<double>(screenWidth));
    double bottom = std::min(std::ceil(region.maxY()), static_cast<double>(screenHeight));
    if (!(right > left) || !(bottom > top)) {
        return std::nullopt; // also for NaN edges
    }
    return PixelArea{static_cast<int>(left), static_cast<int>(top),
                     static_cast<unsigned>(right - left), static_cast<unsigned>(bottom - top)};
}

// One colour channel of a pixel value, scaled to 8 bits.
std::uint8_t channel(unsigned long pixel, unsigned long mask) {
    if (mask == 0) {
        return 0;
    }
    int shift = std::countr_zero(mask);
    unsigned long value = (pixel & mask) >> shift;
    unsigned long maximum = mask >> shift;
    return static_cast<std::uint8_t>(maximum == 255 ? value : value * 255 / maximum);
}

std::vector<std::uint8_t> rgbaOf(XImage& image) {
    const auto width = static_cast<std::size_t>(image.width);
    const auto height = static_cast<std::size_t>(image.height);
    std::vector<std::uint8_t> bytes(width * height * 4);
    const bool commonLayout = image.bits_per_pixel == 32 && image.byte_order == LSBFirst &&
                              image.red_mask == 0xFF0000 && image.green_mask == 0xFF00 &&
                              image.blue_mask == 0xFF;
    for (std::size_t y = 0; y < height; ++y) {
        std::uint8_t* out = bytes.data() + y * width * 4;
        if (commonLayout) {
            // BGRX in memory: the layout of nearly every desktop.
            const auto* row = reinterpret_cast<const std::uint8_t*>(image.data) +
                              y * static_cast<std::size_t>(image.bytes_per_line);
            for (std::size_t x = 0; x < width; ++x) {
                out[x * 4] = row[x * 4 + 2];
                out[x * 4 + 1] = row[x * 4 + 1];
                out[x * 4 + 2] = row[x * 4];
                out[x * 4 + 3] = 255;
            }
            continue;
        }
        for (std::size_t x = 0; x < width; ++x) {
            unsigned long pixel = XGetPixel(&image, static_cast<int>(x), static_cast<int>(y));
            out[x * 4] = channel(pixel, image.red_mask);
            out[x * 4 + 1] = channel(pixel, image.green_mask);
            out[x * 4 + 2] = channel(pixel, image.blue_mask);
            out[x * 4 + 3] = 255;
        }
    }
    return bytes;
}

// Through a shared memory segment: no copy of the pixels through the socket.
std::optional<std::vector<std::uint8_t>> captureShared(x11::Connection::Session& session,
                                                       const PixelArea& area) {
    ::Display* display = session.display();
    if (XShmQueryExtension(display) == 0) {
        return std::nullopt;
    }
    int screen = DefaultScreen(display);
    XShmSegmentInfo segment{};
    XImage* image = XShmCreateImage(display, DefaultVisual(display, screen),
                                    static_cast<unsigned>(DefaultDepth(display, screen)), ZPixmap,
                                    nullptr, &segment, area.width, area.height);
    if (image == nullptr) {
        return std::nullopt;
    }
    std::optional<std::vector<std::uint8_t>> bytes;
    segment.shmid =
        shmget(IPC_PRIVATE, static_cast<std::size_t>(image->bytes_per_line) * area.height,
               IPC_CREAT | 0600);
    if (segment.shmid >= 0) {
        segment.shmaddr = image->data = static_cast<char*>(shmat(segment.shmid, nullptr, 0));
        segment.readOnly = False;
        // shmat reports failure as the address (void*)-1.
        const bool attached = reinterpret_cast<std::intptr_t>(segment.shmaddr) != -1;
        if (attached && XShmAttach(display, &segment) != 0) {
            bool got = XShmGetImage(display, session.root(), image, area.x, area.y, AllPlanes) != 0;
            // A remote server accepts the attach request but fails it: the error shows here.
            if (session.syncAndTakeError() == 0 && got) {
                bytes = rgbaOf(*image);
            }
            XShmDetach(display, &segment);
            XSync(display, False);
        }
        if (attached) {
            shmdt(segment.shmaddr);
        }
        shmctl(segment.shmid, IPC_RMID, nullptr);
    }
    image->data = nullptr;
    XDestroyImage(image);
    return bytes;
}

std::optional<std::vector<std::uint8_t>> captureCopied(x11::Connection::Session& session,
                                                       const PixelArea& area) {
    XImage* image = XGetImage(session.display(), session.root(), area.x, area.y, area.width,
                              area.height, AllPlanes, ZPixmap);
    session.syncAndTakeError();
    if (image == nullptr) {
        return std::nullopt;
    }
    std::vector<std::uint8_t> bytes = rgbaOf(*image);
    XDestroyImage(image);
    return bytes;
}

} // namespace

X11ScreenCapturer::X11ScreenCapturer(std::shared_ptr<x11::Connection> connection)
    : connection_(std::move(connection)) {}

CaptureResult X11ScreenCapturer::capture(const ScreenRect& region) {
    using Kind = CaptureFailure::Kind;
    if (!connection_) {
        return CaptureFailure{Kind::noScreenAccess, "no X display"};
    }
    x11::Connection::Session session{*connection_};
    if (!session.alive()) {
        return CaptureFailure{Kind::noScreenAccess, "X display connection lost"};
    }
    ::Display* display = session.display();
    int screen = DefaultScreen(display);
    std::optional<PixelArea> area =
        clippedArea(region, DisplayWidth(display, screen), DisplayHeight(display, screen));
    if (!area) {
        return CaptureFailure{Kind::emptyRegion, "region off-screen or empty"};
    }
    std::optional<std::vector<std::uint8_t>> bytes = captureShared(session, *area);
    if (!bytes) {
        bytes = captureCopied(session, *area);
    }
    if (!bytes) {
        return CaptureFailure{session.alive() ? Kind::failed : Kind::noScreenAccess,
                              "XGetImage failed"};
    }
    PixelBuffer buffer;
    buffer.width = area->width;
    buffer.height = area->height;
    buffer.bytes = std::move(*bytes);
    buffer.area = ScreenRect{static_cast<double>(area->x), static_cast<double>(area->y),
                             static_cast<double>(area->width), static_cast<double>(area->height)};
    return buffer;
}

} // namespace lectorbell::platform::x11
