// The screen-reading pipeline without a display: a page drawn into a PNG stands for the screen,
// a canned recogniser reads the lines the test placed on it, and a fake locator finds windows.

#include "doubles/CannedRecognizer.hpp"
#include "doubles/FakeWindowLocator.hpp"
#include "doubles/ImageFileCapturer.hpp"
#include "lectorbell/CoreLog.hpp"
#include "lectorbell/Utf8.hpp"
#include "sources/ScreenReader.hpp"

#include <QImage>
#include <algorithm>
#include <filesystem>
#include <future>
#include <gtest/gtest.h>
#include <mutex>
#include <unistd.h>

namespace lectorbell::testing {
namespace {

using platform::RecognitionFailure;
using platform::RecognitionMode;
using platform::TargetWindow;
using sources::BandOutcome;
using sources::BandReading;
using sources::RestOutcome;
using sources::ScreenOCR;
using sources::ScreenReader;
using Strings = std::vector<std::string>;

// The window's frame on the screen; its title bar ends 30 points below its top.
ScreenRect frame() {
    return {100, 50, 700, 600};
}
constexpr double titleBarBottom = 80;

// A window with a title, then four paragraphs of two lines and, lower down, two columns.
std::vector<OCRLine> page() {
    return {
        cannedLine("Notes - Editor", 380, 55),
        cannedLine("The first paragraph tells where the story begins.", 110, 100),
        cannedLine("It has two lines of plain text to read.", 110, 124),
        cannedLine("Second paragraph starts with Lighthouse keepers", 110, 190),
        cannedLine("who watched the sea for many long years.", 110, 214),
        // Runs on past the band of a pointer on the second paragraph.
        cannedLine("Third paragraph: the storm came early that year and", 110, 280),
        cannedLine("nobody in the village had seen such waves.", 110, 304),
        cannedLine("Fourth paragraph ends the tale with quiet boats.", 110, 370),
        cannedLine("The morning after, the harbour was calm again.", 110, 394),
        cannedLine("Left column words here.", 110, 520),
        cannedLine("Right column words there.", 500, 520),
        cannedLine("Left column goes on below.", 110, 544),
        cannedLine("Right column goes on too.", 500, 544),
    };
}

// The page as pixels, a dark bar where each line's text is, on white, shown on a screen.
std::shared_ptr<ImageFileCapturer> screenShowing(const std::vector<OCRLine>& lines, double scale) {
    QImage image{static_cast<int>(frame().width() * scale),
                 static_cast<int>(frame().height() * scale), QImage::Format_RGB32};
    image.fill(Qt::white);
    for (const OCRLine& line : lines) {
        for (int y = static_cast<int>((line.rect.minY() - frame().minY()) * scale);
             y < static_cast<int>((line.rect.maxY() - frame().minY()) * scale); ++y) {
            for (int x = static_cast<int>((line.rect.minX() - frame().minX()) * scale);
                 x < static_cast<int>((line.rect.maxX() - frame().minX()) * scale); ++x) {
                image.setPixel(x, y, qRgb(30, 30, 30));
            }
        }
    }
    const std::string path = (std::filesystem::temp_directory_path() /
                              ("lectorbell-page-" + std::to_string(getpid()) + "@" +
                               std::to_string(static_cast<int>(scale)) + "x.png"))
                                 .string();
    image.save(QString::fromStdString(path));
    auto screen =
        std::make_shared<ImageFileCapturer>(path, ScreenPoint{frame().x(), frame().y()}, scale);
    std::filesystem::remove(path);
    return screen;
}

std::vector<std::string> textsOf(const std::vector<ReadingBlock>& blocks) {
    std::vector<std::string> texts;
    texts.reserve(blocks.size());
    for (const ReadingBlock& block : blocks) {
        texts.push_back(toUtf8(block.text));
    }
    return texts;
}

// The middle of the word that starts `column` characters into the canned line at `line`.
ScreenPoint wordAt(const OCRLine& line, std::size_t column) {
    return {line.rect.minX() + 10.0 * static_cast<double>(column) + 5, line.rect.midY()};
}

// Log lines of the "ocr" category written while it lives.
class OcrLog {
public:
    OcrLog() {
        setCoreLogSink([this](std::string_view category, std::string_view message) {
            if (category == "ocr") {
                std::lock_guard lock{mutex_};
                lines_.emplace_back(message);
            }
        });
    }
    ~OcrLog() { setCoreLogSink({}); }
    OcrLog(const OcrLog&) = delete;
    OcrLog& operator=(const OcrLog&) = delete;

    std::size_t count(std::string_view prefix) const {
        std::lock_guard lock{mutex_};
        return static_cast<std::size_t>(
            std::count_if(lines_.begin(), lines_.end(),
                          [&](const std::string& line) { return line.starts_with(prefix); }));
    }

private:
    mutable std::mutex mutex_;
    std::vector<std::string> lines_;
};

// One screen, at one scale, with the page's window on it.
struct Screen {
    explicit Screen(double scale = 1, const std::vector<OCRLine>& lines = page())
        : script(std::make_shared<CannedScript>(lines))
        , capturer(screenShowing(lines, scale))
        , ocr(
              capturer, [s = script] { return std::make_unique<CannedRecognizer>(s); }, 1)
        , reader(ocr) {}

    std::shared_ptr<CannedScript> script;
    std::shared_ptr<ImageFileCapturer> capturer;
    ScreenOCR ocr;
    ScreenReader reader;
};

TargetWindow window(std::optional<double> titleBar = titleBarBottom) {
    return {7, 0, frame(), titleBar};
}

TEST(ScreenBands, theBandIsReadFastAndTheRestBelowItOnce) {
    const std::vector<OCRLine> lines = page();
    struct Case {
        const char* name;
        double scale;
        ScreenPoint pointer;
        bool wholeWindow;
        Strings band;
        Strings rest;
    };
    const Case cases[] = {
        {"a paragraph cut at the band's edge is left whole to the rest",
         1,
         wordAt(lines[3], 29),
         false,
         {"Lighthouse keepers who watched the sea for many long years."},
         {"Third paragraph: the storm came early that year and nobody in the village had seen "
          "such waves.",
          "Fourth paragraph ends the tale with quiet boats. The morning after, the harbour was "
          "calm again.",
          "Left column words here. Left column goes on below.",
          "Right column words there. Right column goes on too."}},
        {"the same at two pixels per point",
         2,
         wordAt(lines[3], 29),
         false,
         {"Lighthouse keepers who watched the sea for many long years."},
         {"Third paragraph: the storm came early that year and nobody in the village had seen "
          "such waves.",
          "Fourth paragraph ends the tale with quiet boats. The morning after, the harbour was "
          "calm again.",
          "Left column words here. Left column goes on below.",
          "Right column words there. Right column goes on too."}},
        {"columns in the band make it read the whole window",
         1,
         wordAt(lines[9], 5),
         true,
         {"column words here. Left column goes on below.",
          "Right column words there. Right column goes on too."},
         {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Screen screen{c.scale};
        BandOutcome outcome = screen.reader.readBand(window(), c.pointer);
        ASSERT_TRUE(std::holds_alternative<BandReading>(outcome));
        const BandReading& band = std::get<BandReading>(outcome);
        EXPECT_EQ(band.wholeWindow, c.wholeWindow);
        EXPECT_EQ(textsOf(band.result.blocks), c.band);
        RestOutcome rest = screen.reader.readRest(band);
        ASSERT_TRUE(std::holds_alternative<std::vector<ReadingBlock>>(rest));
        EXPECT_EQ(textsOf(std::get<std::vector<ReadingBlock>>(rest)), c.rest);

        // The band's edges fall between lines, never through one.
        for (const OCRLine& line : lines) {
            for (double edge : {band.band.minY(), band.band.maxY()}) {
                EXPECT_FALSE(edge > line.rect.minY() && edge < line.rect.maxY())
                    << "edge " << edge << " cuts " << toUtf8(line.text);
            }
        }
        // One capture; the band fast, then the whole window or what lies below the band.
        EXPECT_EQ(screen.capturer->captures(), 1);
        std::vector<CannedScript::Call> calls = screen.script->calls();
        ASSERT_EQ(calls.size(), 2U);
        EXPECT_EQ(calls[0].mode, RecognitionMode::fast);
        EXPECT_EQ(calls[1].mode, RecognitionMode::accurate);
        EXPECT_DOUBLE_EQ(calls[1].area.minY(), c.wholeWindow ? frame().minY() : band.band.maxY());
    }
}

TEST(ScreenBands, theTitleBarIsNeverReadAsText) {
    const std::vector<OCRLine> lines = page();
    struct Case {
        const char* name;
        std::optional<double> titleBar;
        ScreenPoint pointer;
        // The first block read, or the error shown.
        std::string expected;
    };
    const Case cases[] = {
        {"pointing at the title finds nothing to read there", titleBarBottom, wordAt(lines[0], 0),
         "No readable text near cursor"},
        {"the first paragraph under the title", titleBarBottom, wordAt(lines[1], 0),
         "The first paragraph tells where the story begins. It has two lines of plain text to "
         "read."},
        {"a window without a title bar of its own keeps its top line", std::nullopt,
         wordAt(lines[0], 0), "Notes - Editor"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Screen screen;
        BandOutcome outcome = screen.reader.readBand(window(c.titleBar), c.pointer);
        if (const auto* error = std::get_if<ReadingError>(&outcome)) {
            EXPECT_EQ(error->userMessage(), c.expected);
            continue;
        }
        ASSERT_TRUE(std::holds_alternative<BandReading>(outcome));
        const BandReading& band = std::get<BandReading>(outcome);
        ASSERT_FALSE(band.result.blocks.empty());
        EXPECT_EQ(toUtf8(band.result.blocks.front().text), c.expected);
        RestOutcome rest = screen.reader.readRest(band);
        ASSERT_TRUE(std::holds_alternative<std::vector<ReadingBlock>>(rest));
        Strings read = textsOf(band.result.blocks);
        for (const std::string& text : textsOf(std::get<std::vector<ReadingBlock>>(rest))) {
            read.push_back(text);
        }
        const bool titleRead = std::any_of(read.begin(), read.end(), [](const std::string& text) {
            return text.find("Notes - Editor") != std::string::npos;
        });
        EXPECT_EQ(titleRead, !c.titleBar);
    }
}

TEST(ScreenBands, theWindowUnderThePointerIsTheOneCaptured) {
    // A small window in front of the page's window, over its lower columns.
    const TargetWindow front{8, 0, ScreenRect{450, 500, 300, 100}, std::nullopt};
    FakeWindowLocator locator{{front, window()}};
    EXPECT_FALSE(locator.window({20, 20}));

    std::optional<TargetWindow> under = locator.window(wordAt(page()[3], 29));
    ASSERT_TRUE(under);
    EXPECT_EQ(under->windowID, 7U);
    Screen screen;
    BandOutcome outcome = screen.reader.readBand(*under, wordAt(page()[3], 29));
    ASSERT_TRUE(std::holds_alternative<BandReading>(outcome));
    EXPECT_EQ(std::get<BandReading>(outcome).image->area, frame());

    std::optional<TargetWindow> inFront = locator.window({510, 530});
    ASSERT_TRUE(inFront);
    outcome = screen.reader.readBand(*inFront, {510, 530});
    ASSERT_TRUE(std::holds_alternative<BandReading>(outcome));
    EXPECT_EQ(std::get<BandReading>(outcome).image->area, front.frame);
    EXPECT_EQ(textsOf(std::get<BandReading>(outcome).result.blocks),
              (Strings{"Right column words there. Right column goes on too."}));
}

TEST(ScreenBands, recognitionFailuresBecomeTheirReadingErrors) {
    struct Case {
        const char* name;
        RecognitionFailure failure;
        std::string message;
    };
    const Case cases[] = {
        {"no language data names the package to install",
         {RecognitionFailure::Kind::engineUnavailable, "no data", "tesseract-ocr-eng"},
         "Install tesseract-ocr-eng to read text on screen"},
        {"an unusable image reads as nothing found",
         {RecognitionFailure::Kind::unusableImage, "too large", {}},
         "No readable text found on screen near cursor"},
        {"a recognition past its deadline reads as nothing found",
         {RecognitionFailure::Kind::deadlinePassed, "deadline", {}},
         "No readable text found on screen near cursor"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Screen screen;
        screen.script->failWith(c.failure);
        BandOutcome band = screen.reader.readBand(window(), wordAt(page()[3], 29));
        ASSERT_TRUE(std::holds_alternative<ReadingError>(band));
        EXPECT_EQ(std::get<ReadingError>(band).userMessage(), c.message);
        // The same for a selection found by colour, which recognises the whole window.
        sources::ScreenOutcome whole = screen.ocr.recognizeWithPixels(window(), std::nullopt).get();
        ASSERT_TRUE(std::holds_alternative<ReadingError>(whole));
        EXPECT_EQ(std::get<ReadingError>(whole).userMessage(), c.message);
    }
}

TEST(ScreenCancellation, aCancelledReadingEndsWithoutResultErrorOrMoreWork) {
    const ScreenPoint pointer = wordAt(page()[3], 29);
    enum class When { beforeTheCapture, duringTheBand, beforeTheRest, duringTheRest };
    struct Case {
        const char* name;
        When when;
        // Recognitions started, and how many of them were cut short.
        std::size_t started;
        std::size_t stopped;
    };
    const Case cases[] = {
        {"before the capture", When::beforeTheCapture, 0, 0},
        {"while the band is recognised", When::duringTheBand, 1, 1},
        {"before the rest", When::beforeTheRest, 1, 0},
        {"while the rest is recognised", When::duringTheRest, 2, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Screen screen;
        OcrLog log;
        CancelToken cancel;
        std::variant<BandOutcome, RestOutcome> outcome;
        switch (c.when) {
        case When::beforeTheCapture:
            cancel.cancel();
            outcome = screen.reader.readBand(window(), pointer, cancel);
            EXPECT_EQ(screen.capturer->captures(), 0);
            break;
        case When::duringTheBand: {
            screen.script->hold();
            auto band = std::async(std::launch::async, [&] {
                return screen.reader.readBand(window(), pointer, cancel);
            });
            ASSERT_TRUE(screen.script->waitForStarted(1));
            cancel.cancel();
            outcome = band.get();
            break;
        }
        case When::beforeTheRest:
        case When::duringTheRest: {
            BandOutcome band = screen.reader.readBand(window(), pointer, cancel);
            ASSERT_TRUE(std::holds_alternative<BandReading>(band));
            if (c.when == When::beforeTheRest) {
                cancel.cancel();
                outcome = screen.reader.readRest(std::get<BandReading>(band), cancel);
                break;
            }
            screen.script->hold();
            auto rest = std::async(std::launch::async, [&] {
                return screen.reader.readRest(std::get<BandReading>(band), cancel);
            });
            ASSERT_TRUE(screen.script->waitForStarted(2));
            cancel.cancel();
            outcome = rest.get();
            break;
        }
        }
        const bool cancelled =
            std::visit([](const auto& o) { return std::holds_alternative<Cancelled>(o); }, outcome);
        EXPECT_TRUE(cancelled);
        std::vector<CannedScript::Call> calls = screen.script->calls();
        EXPECT_EQ(calls.size(), c.started);
        EXPECT_EQ(static_cast<std::size_t>(std::count_if(
                      calls.begin(), calls.end(),
                      [](const CannedScript::Call& call) { return call.stopped.has_value(); })),
                  c.stopped);
        EXPECT_EQ(log.count("ocr: cancelled"), 1U);
        EXPECT_EQ(log.count("recognition: failed"), 0U);
    }
}

} // namespace
} // namespace lectorbell::testing
