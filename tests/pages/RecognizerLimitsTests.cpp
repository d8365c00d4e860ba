// The real recogniser's limits: it stops between words once cancelled or past its deadline, and
// names the package to install when its language data is missing.

#include "PageTruth.hpp"
#include "platform/linux/tesseract/ImageFile.hpp"
#include "platform/linux/tesseract/TesseractRecognizer.hpp"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <thread>
#include <unistd.h>

namespace lectorbell {
namespace {

using platform::Recognition;
using platform::RecognitionFailure;
using platform::RecognitionLimits;
using platform::RecognitionMode;
using platform::tesseract::TesseractRecognizer;

PixelBuffer onePage() {
    auto image = platform::tesseract::readImageFile(pages::directory() + "/one-column@1x.png", 1);
    if (auto* reason = std::get_if<std::string>(&image)) {
        ADD_FAILURE() << *reason;
        return {};
    }
    return std::get<PixelBuffer>(image);
}

TEST(RecognizerLimits, recognitionStopsOnceCancelledOrPastItsDeadline) {
    const PixelBuffer page = onePage();
    using Clock = std::chrono::steady_clock;
    TesseractRecognizer recognizer;
    // The whole page, with time to spare; this also starts the engine for the cases below.
    auto started = Clock::now();
    Recognition whole = recognizer.recognize(page, RecognitionMode::accurate,
                                             {{}, Clock::now() + std::chrono::minutes{2}});
    const auto wholeTook = Clock::now() - started;
    ASSERT_FALSE(whole.failure);
    ASSERT_FALSE(whole.lines.empty());

    struct Case {
        const char* name;
        // Cancelled this long after the call starts (none: never).
        std::optional<std::chrono::milliseconds> cancelAfter;
        std::optional<std::chrono::milliseconds> deadlineIn;
        RecognitionFailure::Kind expected;
    };
    const Case cases[] = {
        {"cancelled before it starts", std::chrono::milliseconds{0}, std::nullopt,
         RecognitionFailure::Kind::cancelled},
        // Finding the page's lines alone takes longer than this: the first word sees the cancel.
        {"cancelled while it runs", std::chrono::milliseconds{20}, std::nullopt,
         RecognitionFailure::Kind::cancelled},
        {"a deadline that has passed", std::nullopt, std::chrono::milliseconds{-1},
         RecognitionFailure::Kind::deadlinePassed},
        {"a deadline shorter than the work", std::nullopt, std::chrono::milliseconds{20},
         RecognitionFailure::Kind::deadlinePassed},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        RecognitionLimits limits;
        if (c.deadlineIn) {
            limits.deadline = Clock::now() + *c.deadlineIn;
        }
        std::thread canceller;
        if (c.cancelAfter && c.cancelAfter->count() == 0) {
            limits.cancel.cancel();
        } else if (c.cancelAfter) {
            canceller = std::thread{[cancel = limits.cancel, after = *c.cancelAfter] {
                std::this_thread::sleep_for(after);
                cancel.cancel();
            }};
        }
        started = Clock::now();
        Recognition recognition = recognizer.recognize(page, RecognitionMode::accurate, limits);
        const auto took = Clock::now() - started;
        if (canceller.joinable()) {
            canceller.join();
        }
        ASSERT_TRUE(recognition.failure);
        EXPECT_EQ(recognition.failure->kind, c.expected) << recognition.failure->detail;
        EXPECT_TRUE(recognition.lines.empty());
        // Stopped at the first word, not after the last.
        EXPECT_LT(took, wholeTook / 2);
    }
}

TEST(RecognizerLimits, withoutLanguageDataTheRecogniserNamesThePackageToInstall) {
    const PixelBuffer page = onePage();
    const std::filesystem::path empty = std::filesystem::temp_directory_path() /
                                        ("lectorbell-no-tessdata-" + std::to_string(getpid()));
    std::filesystem::create_directories(empty);
    const char* before = std::getenv("TESSDATA_PREFIX");
    const std::string saved = before ? before : "";
    setenv("TESSDATA_PREFIX", empty.c_str(), 1);
    TesseractRecognizer recognizer;
    Recognition recognition = recognizer.recognize(page, RecognitionMode::fast, {});
    if (before) {
        setenv("TESSDATA_PREFIX", saved.c_str(), 1);
    } else {
        unsetenv("TESSDATA_PREFIX");
    }
    std::filesystem::remove(empty);
    ASSERT_TRUE(recognition.failure);
    EXPECT_EQ(recognition.failure->kind, RecognitionFailure::Kind::engineUnavailable);
    EXPECT_EQ(recognition.failure->missingPackage, "tesseract-ocr-eng");
}

} // namespace
} // namespace lectorbell
