#include "speech/SpeechSegments.hpp"

#include <gtest/gtest.h>

namespace lectorbell::speech {
namespace {

platform::SynthesizedSpeech speechOf(platform::PcmSamples samples,
                                     std::vector<platform::SpokenWord> words) {
    return {{1000, 1}, std::move(samples), std::move(words)};
}

TEST(SegmentsAtWords, CutsAtEveryWordStartAndKeepsEverySample) {
    platform::PcmSamples samples(100);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        samples[i] = static_cast<std::int16_t>(i);
    }
    // Two words at the same frame share a segment; a word past the end gets the last frame.
    auto segments = segmentsAtWords(
        speechOf(samples, {{10, {0, 1}}, {40, {2, 1}}, {40, {4, 1}}, {500, {6, 1}}}));
    ASSERT_EQ(segments.size(), 4U);
    EXPECT_EQ(segments[0].samples.size(), 10U);
    EXPECT_TRUE(segments[0].words.empty());
    EXPECT_EQ(segments[1].words, (std::vector<UTF16Range>{{0, 1}}));
    EXPECT_EQ(segments[2].words, (std::vector<UTF16Range>{{2, 1}, {4, 1}}));
    EXPECT_EQ(segments[3].words, (std::vector<UTF16Range>{{6, 1}}));
    EXPECT_EQ(segments[3].samples, (platform::PcmSamples{99}));
    platform::PcmSamples joined;
    for (const SoundSegment& s : segments) {
        joined.insert(joined.end(), s.samples.begin(), s.samples.end());
    }
    EXPECT_EQ(joined, samples);
}

TEST(SegmentsAtWords, SoundlessSpeechGivesOneShortSilence) {
    auto segments = segmentsAtWords(speechOf({}, {}));
    ASSERT_EQ(segments.size(), 1U);
    EXPECT_EQ(segments[0].samples, (platform::PcmSamples{0}));
}

TEST(TrimLeadingSilence, KeepsTwoMillisecondsBeforeTheFirstSoundAndMovesWords) {
    platform::PcmSamples samples(20, 50); // below the silence threshold
    samples.insert(samples.end(), {3000, -3000});
    auto speech = speechOf(samples, {{20, {0, 2}}, {21, {3, 2}}});
    trimLeadingSilence(speech);
    EXPECT_EQ(speech.samples.size(), 4U);
    EXPECT_EQ(speech.words[0].frame, 2);
    EXPECT_EQ(speech.words[1].frame, 3);

    auto silent = speechOf(platform::PcmSamples(10, 0), {});
    trimLeadingSilence(silent);
    EXPECT_EQ(silent.samples.size(), 10U) << "all silence is left alone";
}

} // namespace
} // namespace lectorbell::speech
