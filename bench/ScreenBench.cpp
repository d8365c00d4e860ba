// Screen reading timings on a private X server: capture of a 1280x800 window, the band around
// the pointer to its first text, and the whole window. Run with OMP_THREAD_LIMIT=1 in the
// environment, as the application runs.
#include "XvfbServer.hpp"
#include "platform/linux/tesseract/TesseractRecognizer.hpp"
#include "platform/linux/x11/X11Connection.hpp"
#include "platform/linux/x11/X11ScreenCapturer.hpp"
#include "sources/ScreenReader.hpp"

#include <X11/Xlib.h>
#include <benchmark/benchmark.h>
#include <cstring>
#include <string>

namespace {

using namespace lectorbell;

struct Desktop {
    Desktop() {
        server = testing::XvfbServer::start(1280, 800);
        if (!server) {
            return;
        }
        display = server->client();
        XSetWindowAttributes attributes{};
        attributes.override_redirect = True;
        attributes.background_pixel = WhitePixel(display, DefaultScreen(display));
        window = XCreateWindow(display, DefaultRootWindow(display), 0, 0, 1280, 800, 0,
                               CopyFromParent, InputOutput, CopyFromParent,
                               CWOverrideRedirect | CWBackPixel, &attributes);
        XMapRaised(display, window);
        XSync(display, False);
        GC gc = XCreateGC(display, window, 0, nullptr);
        XFontStruct* font = XLoadQueryFont(display, "10x20");
        if (font != nullptr) {
            XSetFont(display, gc, font->fid);
        }
        const char* line = "Lines of an article shown only as pixels, for timing the recogniser.";
        for (int i = 0; i < 24; ++i) {
            std::string text = std::to_string(i + 1) + ". " + line;
            XDrawString(display, window, gc, 40, 40 + i * 32, text.c_str(),
                        static_cast<int>(text.size()));
        }
        XFreeGC(display, gc);
        XSync(display, False);
        connection = platform::x11::Connection::open();
        ocr = std::make_unique<sources::ScreenOCR>(
            std::make_shared<platform::x11::X11ScreenCapturer>(connection),
            [] { return std::make_unique<platform::tesseract::TesseractRecognizer>(); }, 2);
    }
    ~Desktop() {
        ocr.reset();
        connection.reset();
    }
    platform::TargetWindow target() const {
        return {static_cast<std::uint32_t>(window), 0, ScreenRect{0, 0, 1280, 800}, std::nullopt};
    }

    std::unique_ptr<testing::XvfbServer> server;
    ::Display* display = nullptr;
    ::Window window = 0;
    std::shared_ptr<platform::x11::Connection> connection;
    std::unique_ptr<sources::ScreenOCR> ocr;
};

Desktop& desktop() {
    static Desktop instance;
    return instance;
}

void captureWindow(benchmark::State& state) {
    if (!desktop().ocr) {
        state.SkipWithError("Xvfb unavailable");
        return;
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(desktop().ocr->capture(desktop().target(), std::nullopt));
    }
}
BENCHMARK(captureWindow)->Unit(benchmark::kMillisecond);

void bandToFirstText(benchmark::State& state) {
    if (!desktop().ocr) {
        state.SkipWithError("Xvfb unavailable");
        return;
    }
    sources::ScreenReader reader{*desktop().ocr};
    for (auto _ : state) {
        benchmark::DoNotOptimize(reader.readBand(desktop().target(), {300, 395}));
    }
}
BENCHMARK(bandToFirstText)->Unit(benchmark::kMillisecond)->UseRealTime();

void wholeWindow(benchmark::State& state) {
    if (!desktop().ocr) {
        state.SkipWithError("Xvfb unavailable");
        return;
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(
            desktop().ocr->recognize(desktop().target(), std::nullopt, false, false).get());
    }
}
BENCHMARK(wholeWindow)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
