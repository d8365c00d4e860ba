#include "doubles/CannedRecognizer.hpp"
#include "sources/RecognitionPool.hpp"

#include <gtest/gtest.h>

namespace lectorbell::testing {
namespace {

using platform::Recognition;
using platform::RecognitionFailure;
using platform::RecognitionLimits;
using platform::RecognitionMode;
using sources::RecognitionPool;

std::shared_ptr<const PixelBuffer> image() {
    auto pixels = std::make_shared<PixelBuffer>();
    pixels->width = 100;
    pixels->height = 40;
    pixels->bytes.assign(std::size_t{100} * 40 * 4, 255);
    pixels->area = ScreenRect{0, 0, 100, 40};
    return pixels;
}

std::optional<RecognitionFailure::Kind> stopped(std::future<Recognition>& result) {
    Recognition recognition = result.get();
    return recognition.failure ? std::optional{recognition.failure->kind} : std::nullopt;
}

// One worker, held on its first recognition while the others queue behind it.
struct BusyPool {
    BusyPool()
        : script(std::make_shared<CannedScript>(std::vector<OCRLine>{cannedLine("Hello", 0, 0)}))
        , pool(std::make_unique<RecognitionPool>(
              [s = script] { return std::make_unique<CannedRecognizer>(s); }, 1)) {
        script->hold();
        running = pool->recognize(image(), RecognitionMode::accurate, {});
        EXPECT_TRUE(script->waitForStarted(1));
    }

    std::shared_ptr<CannedScript> script;
    std::unique_ptr<RecognitionPool> pool;
    std::future<Recognition> running;
};

TEST(RecognitionPool, shuttingDownDropsQueuedWorkAndStopsWhatRuns) {
    BusyPool busy;
    std::future<Recognition> queued[] = {
        busy.pool->recognize(image(), RecognitionMode::fast, {}),
        busy.pool->recognize(image(), RecognitionMode::accurate, {}),
    };
    const auto started = std::chrono::steady_clock::now();
    busy.pool.reset();
    // Well before a held recognition would give up by itself.
    EXPECT_LT(std::chrono::steady_clock::now() - started, CannedScript::holdLimit / 2);
    EXPECT_EQ(stopped(busy.running), RecognitionFailure::Kind::cancelled);
    for (std::future<Recognition>& result : queued) {
        EXPECT_EQ(stopped(result), RecognitionFailure::Kind::cancelled);
    }
    EXPECT_EQ(busy.script->calls().size(), 1U);
}

TEST(RecognitionPool, staleWorkIsAnsweredWithoutRunning) {
    struct Case {
        const char* name;
        bool cancelled;
        std::optional<std::chrono::milliseconds> deadlineFromNow;
        std::optional<RecognitionFailure::Kind> expected;
    };
    const Case cases[] = {
        {"cancelled while it waited", true, std::nullopt, RecognitionFailure::Kind::cancelled},
        {"its deadline passed while it waited", false, std::chrono::milliseconds{-1},
         RecognitionFailure::Kind::deadlinePassed},
        {"still wanted and in time", false, std::chrono::milliseconds{60000}, std::nullopt},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        BusyPool busy;
        RecognitionLimits limits;
        if (c.deadlineFromNow) {
            limits.deadline = std::chrono::steady_clock::now() + *c.deadlineFromNow;
        }
        std::future<Recognition> queued =
            busy.pool->recognize(image(), RecognitionMode::fast, limits);
        if (c.cancelled) {
            limits.cancel.cancel();
        }
        busy.script->release();
        EXPECT_EQ(stopped(busy.running), std::nullopt);
        EXPECT_EQ(stopped(queued), c.expected);
        // Only work still wanted reaches the recogniser.
        EXPECT_EQ(busy.script->calls().size(), c.expected ? 1U : 2U);
    }
}

TEST(RecognitionPool, cancellingStopsARecognitionThatIsRunning) {
    auto script = std::make_shared<CannedScript>(std::vector<OCRLine>{cannedLine("Hello", 0, 0)});
    RecognitionPool pool{[script] { return std::make_unique<CannedRecognizer>(script); }, 2};
    script->hold();
    RecognitionLimits limits;
    std::future<Recognition> result = pool.recognize(image(), RecognitionMode::fast, limits);
    ASSERT_TRUE(script->waitForStarted(1));
    limits.cancel.cancel();
    EXPECT_EQ(stopped(result), RecognitionFailure::Kind::cancelled);
    script->release();
    std::future<Recognition> next = pool.recognize(image(), RecognitionMode::fast, {});
    Recognition read = next.get();
    EXPECT_FALSE(read.failure);
    ASSERT_EQ(read.lines.size(), 1U);
}

} // namespace
} // namespace lectorbell::testing
