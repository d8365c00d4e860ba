// GoogleTest comes before Xlib, whose macros (None, Bool) would break its headers.
// clang-format off
#include <gtest/gtest.h>
// clang-format on

#include "TestEnvironment.hpp"
#include "XvfbServer.hpp"
#include "lectorbell/Utf8.hpp"
#include "lectorbell/VisualSelection.hpp"
#include "platform/linux/tesseract/TesseractRecognizer.hpp"
#include "platform/linux/x11/X11Connection.hpp"
#include "platform/linux/x11/X11ScreenCapturer.hpp"
#include "platform/linux/x11/X11WindowLocator.hpp"
#include "sources/ScreenReader.hpp"

#include <X11/Xatom.h>
#include <X11/Xutil.h>
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/wait.h>
#include <unistd.h>

namespace lectorbell::sources {
namespace {

// A page drawn with the X server's own 10x20 font: text that exists only as pixels.
struct PageLine {
    int y; // baseline
    const char* text;
    enum { plain, lightHighlight, darkHighlight } look = plain;
};

constexpr int marginX = 40;
const PageLine page[] = {
    {60, "The first paragraph tells where the story begins."},
    {90, "It has two lines of plain text to read."},
    {180, "Second paragraph starts with Lighthouse keepers"},
    {210, "who watched the sea for many long years."},
    {300, "Third paragraph: the storm came early that year."},
    {330, "Nobody in the village had seen such waves.", PageLine::lightHighlight},
    {420, "Fourth paragraph ends the tale with quiet boats."},
    {450, "The morning after, the harbour was calm again.", PageLine::darkHighlight},
};

std::string lower(std::string s) {
    std::transform(s.begin(), s.end(), s.begin(), [](unsigned char c) { return std::tolower(c); });
    return s;
}

class ScreenReading : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        server = lectorbell::testing::XvfbServer::start(1024, 768).release();
        if (server == nullptr) {
            return;
        }
        display = server->client();
        window = drawPage();
    }
    static void TearDownTestSuite() { delete server; }
    void SetUp() override {
        LECTORBELL_REQUIRE_XVFB(server);
        connection = platform::x11::Connection::open();
        ocr = std::make_unique<ScreenOCR>(
            std::make_shared<platform::x11::X11ScreenCapturer>(connection),
            [] { return std::make_unique<platform::tesseract::TesseractRecognizer>(); }, 2);
    }

    static ::Window drawPage() {
        ::Window root = DefaultRootWindow(display);
        XSetWindowAttributes attributes{};
        attributes.override_redirect = True;
        attributes.background_pixel = WhitePixel(display, DefaultScreen(display));
        ::Window w = XCreateWindow(display, root, 0, 0, 900, 520, 0, CopyFromParent, InputOutput,
                                   CopyFromParent, CWOverrideRedirect | CWBackPixel, &attributes);
        XMapRaised(display, w);
        XSync(display, False);
        XFontStruct* font = XLoadQueryFont(display, "10x20");
        GC gc = XCreateGC(display, w, 0, nullptr);
        if (font != nullptr) {
            XSetFont(display, gc, font->fid);
        }
        for (const PageLine& line : page) {
            int width = static_cast<int>(std::strlen(line.text)) * 10;
            unsigned long ink = 0x000000;
            if (line.look == PageLine::lightHighlight) {
                XSetForeground(display, gc, 0xB3D7FF); // (179, 215, 255)
                XFillRectangle(display, w, gc, marginX - 2, line.y - 16, width + 4, 22);
            } else if (line.look == PageLine::darkHighlight) {
                XSetForeground(display, gc, 0x3584E4);
                XFillRectangle(display, w, gc, marginX - 2, line.y - 16, width + 4, 22);
                ink = 0xFFFFFF;
            }
            XSetForeground(display, gc, ink);
            XDrawString(display, w, gc, marginX, line.y, line.text,
                        static_cast<int>(std::strlen(line.text)));
        }
        XFreeGC(display, gc);
        if (font != nullptr) {
            XFreeFont(display, font);
        }
        XSync(display, False);
        return w;
    }

    static platform::TargetWindow target() {
        return {static_cast<std::uint32_t>(window), 0, ScreenRect{0, 0, 900, 520}, std::nullopt};
    }

    static std::string allText(const std::vector<ReadingBlock>& blocks) {
        std::string text;
        for (const ReadingBlock& block : blocks) {
            text += toUtf8(block.text) + "\n";
        }
        return text;
    }

    static inline lectorbell::testing::XvfbServer* server = nullptr;
    static inline ::Display* display = nullptr;
    static inline ::Window window = 0;
    std::shared_ptr<platform::x11::Connection> connection;
    std::unique_ptr<ScreenOCR> ocr;
};

TEST_F(ScreenReading, StartsAtThePointedWordAndAddsTheRestOnce) {
    ScreenReader reader{*ocr};
    // The middle of "Lighthouse": 29 characters in, on the line whose baseline is 180.
    ScreenPoint pointer{marginX + 29 * 10 + 45, 174};
    auto band = reader.readBand(target(), pointer);
    ASSERT_TRUE(std::holds_alternative<BandReading>(band));
    const BandReading& first = std::get<BandReading>(band);
    ASSERT_FALSE(first.result.blocks.empty());
    EXPECT_FALSE(first.wholeWindow);
    EXPECT_EQ(first.result.precision, AnchorPrecision::word);
    EXPECT_EQ(lower(toUtf8(first.result.blocks.front().text)).rfind("lighthouse keepers", 0), 0U)
        << toUtf8(first.result.blocks.front().text);
    // The band's edges fall between lines.
    for (const PageLine& line : page) {
        EXPECT_FALSE(first.band.minY() > line.y - 16 && first.band.minY() < line.y + 4);
        EXPECT_FALSE(first.band.maxY() > line.y - 16 && first.band.maxY() < line.y + 4);
    }

    auto rest = reader.readRest(first);
    ASSERT_TRUE(std::holds_alternative<std::vector<ReadingBlock>>(rest));
    std::string text =
        lower(allText(first.result.blocks) + allText(std::get<std::vector<ReadingBlock>>(rest)));
    EXPECT_EQ(text.find("first paragraph"), std::string::npos);
    for (const char* expected : {"storm came early", "fourth paragraph", "harbour was calm"}) {
        std::size_t at = text.find(expected);
        EXPECT_NE(at, std::string::npos) << expected << " in\n" << text;
        EXPECT_EQ(text.find(expected, at + 1), std::string::npos) << expected << " twice";
    }
}

TEST_F(ScreenReading, FindsTheLightBlueHighlightByItsColour) {
    ScreenOutcome outcome = ocr->recognizeWithPixels(target(), std::nullopt).get();
    ASSERT_TRUE(std::holds_alternative<ScreenRecognition>(outcome));
    const auto& recognition = std::get<ScreenRecognition>(outcome);
    ASSERT_TRUE(recognition.image);
    std::optional<std::u16string> selected =
        VisualSelection::selectedText(recognition.lines, *recognition.image);
    ASSERT_TRUE(selected);
    // Both highlights count (a dark one is a selection too); plain lines never do.
    std::string text = lower(toUtf8(*selected));
    EXPECT_EQ(text.rfind("nobody in the village had seen such waves.", 0), 0U) << text;
    EXPECT_EQ(text.find("paragraph"), std::string::npos) << text;
    EXPECT_TRUE(ocr->pixelBuffer(ScreenRect{0, 0, 100, 100}));
}

// The verb, through the real binary, with a fully transparent window lying over the page: the
// window under the point is the page, not the overlay.
std::string run(const std::string& arguments, int* status, const std::string& environment = {}) {
    std::string command = (environment.empty() ? "" : "env " + environment + " ") +
                          std::string{LECTORBELL_EXECUTABLE} + " " + arguments + " 2>/dev/null";
    std::string out;
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) {
        *status = -1;
        return out;
    }
    char buffer[4096];
    std::size_t n = 0;
    while ((n = fread(buffer, 1, sizeof buffer, pipe)) > 0) {
        out.append(buffer, n);
    }
    *status = WEXITSTATUS(pclose(pipe));
    return out;
}

TEST_F(ScreenReading, TheOcrVerbReadsTheWindowUnderThePoint) {
    XSetWindowAttributes attributes{};
    attributes.override_redirect = True;
    attributes.background_pixmap = None;
    ::Window overlay =
        XCreateWindow(display, DefaultRootWindow(display), 0, 0, 900, 520, 0, CopyFromParent,
                      InputOutput, CopyFromParent, CWOverrideRedirect | CWBackPixmap, &attributes);
    unsigned long transparent = 0;
    XChangeProperty(display, overlay, XInternAtom(display, "_NET_WM_WINDOW_OPACITY", False),
                    XA_CARDINAL, 32, PropModeReplace,
                    reinterpret_cast<unsigned char*>(&transparent), 1);
    XMapRaised(display, overlay);
    XSync(display, False);

    int status = 0;
    std::string out =
        run("ocr --screen --at " + std::to_string(marginX + 29 * 10 + 45) + ",174", &status);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(lower(out).rfind("precision: word\n", 0), 0U) << out;
    EXPECT_NE(lower(out).find("band\tbody\tlighthouse keepers"), std::string::npos) << out;
    EXPECT_NE(lower(out).find("rest\tbody\t"), std::string::npos) << out;
    EXPECT_NE(out.find("timings: capture "), std::string::npos) << out;

    out = run("ocr --screen --selection --at 100,100", &status);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(lower(out).rfind("nobody in the village had seen such waves.", 0), 0U) << out;

    out = run("ocr --screen --json --at 1000,700", &status); // the empty root window
    EXPECT_EQ(status, 3);
    EXPECT_EQ(out, "{\"error\": \"No app window under the pointer\"}\n");

    // Without its language data the recogniser cannot start: the reading says what to install.
    char noData[] = "/tmp/lectorbell-no-tessdata-XXXXXX";
    ASSERT_NE(mkdtemp(noData), nullptr);
    out = run("ocr --screen --json --at " + std::to_string(marginX + 29 * 10 + 45) + ",174",
              &status, std::string{"TESSDATA_PREFIX="} + noData);
    rmdir(noData);
    EXPECT_EQ(status, 1);
    EXPECT_EQ(out, "{\"error\": \"Install tesseract-ocr-eng to read text on screen\"}\n");
    XDestroyWindow(display, overlay);
    XSync(display, False);
}

TEST_F(ScreenReading, AWindowThatIsNotThereReadsNothing) {
    platform::TargetWindow offScreen{1, 0, ScreenRect{5000, 5000, 100, 100}, std::nullopt};
    ScreenReader reader{*ocr};
    auto band = reader.readBand(offScreen, {5050, 5050});
    ASSERT_TRUE(std::holds_alternative<ReadingError>(band));
    EXPECT_EQ(std::get<ReadingError>(band).kind(), ReadingError::Kind::ocrFoundNothing);
}

} // namespace
} // namespace lectorbell::sources
