// The rendered test pages shown in a window on a private X server and read back from the screen
// the way a reading does: one capture, the band around the pointer, then the rest below it.
// GoogleTest comes before Xlib, whose macros (None, Bool) would break its headers.
// clang-format off
#include <gtest/gtest.h>
// clang-format on

#include "PageTruth.hpp"
#include "TestEnvironment.hpp"
#include "XvfbServer.hpp"
#include "lectorbell/ReadingOrderEngine.hpp"
#include "lectorbell/Utf8.hpp"
#include "platform/linux/tesseract/ImageFile.hpp"
#include "platform/linux/tesseract/TesseractRecognizer.hpp"
#include "platform/linux/x11/X11Connection.hpp"
#include "platform/linux/x11/X11ScreenCapturer.hpp"
#include "sources/ScreenReader.hpp"

#include <X11/Xutil.h>
#include <algorithm>
#include <cstdlib>

namespace lectorbell {
namespace {

// Shows the image at the top-left of the screen, pixel for pixel.
::Window showImage(::Display* display, const PixelBuffer& image) {
    XSetWindowAttributes attributes{};
    attributes.override_redirect = True;
    const auto width = static_cast<unsigned>(image.width);
    const auto height = static_cast<unsigned>(image.height);
    ::Window window =
        XCreateWindow(display, DefaultRootWindow(display), 0, 0, width, height, 0, CopyFromParent,
                      InputOutput, CopyFromParent, CWOverrideRedirect, &attributes);
    XMapRaised(display, window);
    XSync(display, False);
    // 32-bit BGRX rows: the layout of a 24-bit TrueColor screen.
    auto* pixels = static_cast<char*>(std::malloc(image.bytes.size()));
    for (std::size_t i = 0; i < image.bytes.size(); i += 4) {
        pixels[i] = static_cast<char>(image.bytes[i + 2]);
        pixels[i + 1] = static_cast<char>(image.bytes[i + 1]);
        pixels[i + 2] = static_cast<char>(image.bytes[i]);
        pixels[i + 3] = 0;
    }
    int screen = DefaultScreen(display);
    XImage* ximage = XCreateImage(display, DefaultVisual(display, screen), 24, ZPixmap, 0, pixels,
                                  width, height, 32, 0);
    GC gc = XCreateGC(display, window, 0, nullptr);
    XPutImage(display, window, gc, ximage, 0, 0, 0, 0, width, height);
    XFreeGC(display, gc);
    XDestroyImage(ximage); // frees the pixels too
    XSync(display, False);
    return window;
}

class ScreenPages : public ::testing::TestWithParam<std::string> {};

TEST_P(ScreenPages, ReadFromTheScreenInOrder) {
    const std::string& page = GetParam();
    auto image = platform::tesseract::readImageFile(pages::directory() + "/" + page + "@1x.png", 1);
    ASSERT_TRUE(std::holds_alternative<PixelBuffer>(image)) << std::get<std::string>(image);
    const PixelBuffer& pixels = std::get<PixelBuffer>(image);
    auto server = lectorbell::testing::XvfbServer::start(1280, 800);
    LECTORBELL_REQUIRE_XVFB(server);
    ::Display* display = server->client();
    ::Window window = showImage(display, pixels);

    auto connection = platform::x11::Connection::open();
    sources::ScreenOCR ocr{std::make_shared<platform::x11::X11ScreenCapturer>(connection), [] {
                               return std::make_unique<platform::tesseract::TesseractRecognizer>();
                           }};
    const platform::TargetWindow target{
        static_cast<std::uint32_t>(window), 0,
        ScreenRect{0, 0, static_cast<double>(pixels.width), static_cast<double>(pixels.height)},
        std::nullopt};
    // Point at the start of the first paragraph read (the title).
    auto whole = ocr.recognize(target, std::nullopt, false, false).get();
    ASSERT_TRUE(std::holds_alternative<sources::ScreenRecognition>(whole));
    std::vector<ReadingBlock> blocks =
        ReadingOrderEngine::orderedBlocks(std::get<sources::ScreenRecognition>(whole).lines);
    ASSERT_FALSE(blocks.empty());
    ASSERT_TRUE(blocks.front().bounds);
    const ScreenPoint pointer{blocks.front().bounds->minX() + 3, blocks.front().bounds->minY() + 8};

    sources::ScreenReader reader{ocr};
    auto band = reader.readBand(target, pointer);
    ASSERT_TRUE(std::holds_alternative<sources::BandReading>(band));
    const auto& first = std::get<sources::BandReading>(band);
    auto rest = reader.readRest(first);
    ASSERT_TRUE(std::holds_alternative<std::vector<ReadingBlock>>(rest));

    std::u16string got;
    const std::vector<ReadingBlock>& added = std::get<std::vector<ReadingBlock>>(rest);
    for (const std::vector<ReadingBlock>* part : {&first.result.blocks, &added}) {
        for (const ReadingBlock& block : *part) {
            got += block.text + u" ";
        }
    }
    std::u16string want;
    for (const pages::Expected& paragraph : pages::expectedParagraphs(pages::truthOf(page))) {
        // Side columns are left out of a reading that starts in the main text.
        if (paragraph.role != "navigation" && paragraph.role != "sidebar") {
            want += paragraph.text + u" ";
        }
    }
    EXPECT_LE(pages::errorRate(got, want), pages::maxCharacterErrorRate)
        << "got:  " << toUtf8(got) << "\nwant: " << toUtf8(want);
    XDestroyWindow(display, window);
}

INSTANTIATE_TEST_SUITE_P(Rendered, ScreenPages,
                         ::testing::Values("one-column", "two-columns", "table", "sidebar"),
                         [](const auto& info) {
                             std::string name = info.param;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

} // namespace
} // namespace lectorbell
