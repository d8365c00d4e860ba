#include "platform/linux/audio/PcmFeed.hpp"

#include <gtest/gtest.h>

namespace lectorbell::platform::audio {
namespace {

// Reads `frames` mono frames as the sink would.
PcmSamples pull(PcmFeed& feed, std::size_t frames) {
    PcmSamples out(frames, -1);
    qint64 got = feed.read(reinterpret_cast<char*>(out.data()),
                           static_cast<qint64>(frames * sizeof(std::int16_t)));
    EXPECT_EQ(got, static_cast<qint64>(frames * sizeof(std::int16_t)));
    return out;
}

TEST(PcmFeed, HandsOutBuffersBackToBackThenSilence) {
    PcmFeed feed{1};
    EXPECT_EQ(pull(feed, 3), (PcmSamples{0, 0, 0})) << "silence while nothing is queued";
    feed.entries().push_back({1, {1, 2, 3}});
    feed.entries().push_back({2, {4, 5}});
    EXPECT_EQ(pull(feed, 2), (PcmSamples{1, 2}));
    EXPECT_EQ(pull(feed, 5), (PcmSamples{3, 4, 5, 0, 0}));
    // Stream positions count the silence before them; entries stay until played.
    ASSERT_EQ(feed.entries().size(), 2U);
    EXPECT_EQ(feed.entries()[0].streamStart, 3);
    EXPECT_EQ(feed.entries()[1].streamStart, 6);
    EXPECT_EQ(feed.streamFrames(), 10);
}

TEST(PcmFeed, HoldAfterCurrentFinishesTheBufferBeingHandedOut) {
    PcmFeed feed{1};
    feed.entries().push_back({1, {1, 2, 3}});
    feed.entries().push_back({2, {4, 5}});
    EXPECT_EQ(pull(feed, 1), (PcmSamples{1}));
    feed.holdAfterCurrent();
    EXPECT_EQ(pull(feed, 4), (PcmSamples{2, 3, 0, 0}));
    feed.release();
    EXPECT_EQ(pull(feed, 3), (PcmSamples{4, 5, 0}));
}

TEST(PcmFeed, HoldBetweenBuffersAndHoldNowSilenceAtOnce) {
    PcmFeed feed{1};
    feed.entries().push_back({1, {1, 2}});
    feed.holdAfterCurrent(); // nothing handed out yet: holds before the buffer
    EXPECT_EQ(pull(feed, 2), (PcmSamples{0, 0}));
    feed.release();
    EXPECT_EQ(pull(feed, 1), (PcmSamples{1}));
    feed.holdNow();
    EXPECT_EQ(pull(feed, 2), (PcmSamples{0, 0}));
    feed.release();
    EXPECT_EQ(pull(feed, 2), (PcmSamples{2, 0}));
}

} // namespace
} // namespace lectorbell::platform::audio
