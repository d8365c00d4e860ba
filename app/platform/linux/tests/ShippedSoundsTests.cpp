#include "platform/SoundClip.hpp"
#include "platform/linux/sound/ShippedSounds.hpp"

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <vector>

namespace lectorbell::platform {
namespace {

// Keeps what it is given; plays nothing.
class KeepingOutput final : public AudioOutput {
public:
    void setListener(AudioOutputListener* /*listener*/) override {}
    std::optional<std::string> start(PcmFormat format) override {
        ++starts;
        format_ = format;
        return std::nullopt;
    }
    std::optional<PcmFormat> format() const override { return format_; }
    AudioBufferId schedule(PcmSamples samples) override {
        scheduled.push_back(std::move(samples));
        return scheduled.size();
    }
    void pause(PauseBoundary /*boundary*/) override {}
    void resume() override {}
    void stop() override {}
    std::int64_t playedFrames() const override { return 0; }
    bool isBusy() const override { return false; }
    bool isFlowing() const override { return true; }
    const std::optional<std::string>& failure() const override { return failure_; }

    std::optional<PcmFormat> format_;
    int starts = 0;
    std::vector<PcmSamples> scheduled;
    std::optional<std::string> failure_;
};

TEST(ShippedSounds, BothAreShortQuietAtTheEndsAndFarFromClipping) {
    for (SystemSound sound : {SystemSound::tink, SystemSound::pop}) {
        const SoundClip& clip = sound::shippedSound(sound);
        SCOPED_TRACE(sound == SystemSound::tink ? "tink" : "pop");
        ASSERT_FALSE(clip.samples.empty());
        EXPECT_EQ(clip.format, (PcmFormat{22050, 1}));
        const double seconds = static_cast<double>(clip.samples.size()) / 22050;
        EXPECT_GT(seconds, 0.05);
        EXPECT_LT(seconds, 0.2);
        int peak = 0;
        for (std::int16_t sample : clip.samples) {
            peak = std::max(peak, std::abs(static_cast<int>(sample)));
        }
        EXPECT_GT(peak, 32767 / 4);
        EXPECT_LT(peak, 32767 * 9 / 10);
        // No click where the sound starts or stops.
        EXPECT_LT(std::abs(clip.samples.front()), 300);
        EXPECT_LT(std::abs(clip.samples.back()), 300);
    }
}

TEST(ShippedSounds, PlayInTheFormatTheOutputRuns) {
    KeepingOutput fresh;
    sound::playShippedSound(SystemSound::tink, fresh);
    EXPECT_EQ(fresh.starts, 1);
    ASSERT_EQ(fresh.scheduled.size(), 1U);
    EXPECT_EQ(fresh.scheduled[0], sound::shippedSound(SystemSound::tink).samples);

    KeepingOutput running;
    running.start(PcmFormat{44100, 2});
    sound::playShippedSound(SystemSound::pop, running);
    EXPECT_EQ(running.starts, 1);
    ASSERT_EQ(running.scheduled.size(), 1U);
    const std::size_t frames = sound::shippedSound(SystemSound::pop).samples.size();
    EXPECT_NEAR(static_cast<double>(running.scheduled[0].size()), frames * 2.0 * 2.0, 4.0);
}

std::vector<std::uint8_t> wav(std::uint16_t tag, std::uint16_t channels, std::uint32_t rate,
                              std::uint16_t bits, const std::vector<std::int16_t>& samples,
                              bool dataFirst = false) {
    std::vector<std::uint8_t> out;
    auto put = [&out](std::uint32_t value, int size) {
        for (int i = 0; i < size; ++i) {
            out.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
        }
    };
    auto tagged = [&out](const char* name) {
        for (int i = 0; i < 4; ++i) {
            out.push_back(static_cast<std::uint8_t>(name[i]));
        }
    };
    auto data = [&] {
        tagged("data");
        put(static_cast<std::uint32_t>(samples.size() * 2), 4);
        for (std::int16_t s : samples) {
            put(static_cast<std::uint16_t>(s), 2);
        }
    };
    tagged("RIFF");
    put(0, 4);
    tagged("WAVE");
    if (dataFirst) {
        data();
    }
    // An odd-sized chunk the reader must step over, padding included.
    tagged("LIST");
    put(3, 4);
    put(0, 4);
    tagged("fmt ");
    put(16, 4);
    put(tag, 2);
    put(channels, 2);
    put(rate, 4);
    put(rate * channels * bits / 8, 4);
    put(channels * bits / 8, 2);
    put(bits, 2);
    if (!dataFirst) {
        data();
    }
    return out;
}

TEST(SoundClip, ReadsSixteenBitPcmOnly) {
    auto clip = SoundClip::fromWav(wav(1, 2, 8000, 16, {1, -2, 300, -32768}));
    ASSERT_TRUE(std::holds_alternative<SoundClip>(clip));
    EXPECT_EQ(std::get<SoundClip>(clip).format, (PcmFormat{8000, 2}));
    EXPECT_EQ(std::get<SoundClip>(clip).samples, (PcmSamples{1, -2, 300, -32768}));

    struct Case {
        std::vector<std::uint8_t> bytes;
        const char* reason;
    };
    std::vector<std::uint8_t> truncated = wav(1, 1, 8000, 16, {1, 2, 3});
    truncated.resize(truncated.size() - 2);
    const Case cases[] = {
        {wav(3, 1, 8000, 32, {0, 0}), "only 16-bit integer PCM is read"},
        {wav(1, 1, 8000, 8, {0}), "only 16-bit integer PCM is read"},
        {wav(1, 1, 8000, 16, {1}, true), "sound data before its format"},
        {truncated, "chunk runs past the end of the file"},
        {{'R', 'I', 'F', 'F'}, "not a WAV file"},
    };
    for (const Case& c : cases) {
        auto result = SoundClip::fromWav(c.bytes);
        ASSERT_TRUE(std::holds_alternative<std::string>(result)) << c.reason;
        EXPECT_EQ(std::get<std::string>(result), c.reason);
    }
}

TEST(SoundClip, ConvertsRateAndChannels) {
    const SoundClip mono{{1000, 1}, {0, 1000, 2000, 3000}};
    struct Case {
        PcmFormat target;
        PcmSamples samples;
    };
    const Case cases[] = {
        {{1000, 1}, {0, 1000, 2000, 3000}},
        {{2000, 1}, {0, 500, 1000, 1500, 2000, 2500, 3000}},
        {{500, 1}, {0, 2000}},
        {{1000, 2}, {0, 0, 1000, 1000, 2000, 2000, 3000, 3000}},
        {{1000, 0}, {}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(mono.convertedTo(c.target), c.samples) << c.target.sampleRate;
    }
    const SoundClip stereo{{1000, 2}, {100, 300, -100, -300}};
    EXPECT_EQ(stereo.convertedTo({1000, 1}), (PcmSamples{200, -200}));
}

} // namespace
} // namespace lectorbell::platform
