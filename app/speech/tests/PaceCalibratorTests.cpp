#include "lectorbell/ListeningStats.hpp"
#include "platform/linux/espeak/EspeakSynthesizer.hpp"
#include "speech/PaceCalibrator.hpp"

#include <gtest/gtest.h>

namespace lectorbell::speech {
namespace {

TEST(PaceCalibrator, MeasuresRisingWordsPerMinuteAroundTheVoicesNormalSpeed) {
    platform::espeak::EspeakSynthesizer synth{{"en-US"}};
    PaceCalibrator calibrator{synth};
    EXPECT_EQ(ListeningStats::countWords(PaceCalibrator::passage), 47);

    const PaceCalibrator::Measurement& wpm = calibrator.measure(synth.defaultVoiceId());
    EXPECT_FALSE(calibrator.isMeasuring());
    ASSERT_EQ(wpm.size(), allPacePresets.size());
    double previous = 0;
    for (PacePreset preset : allPacePresets) {
        EXPECT_GT(wpm.at(preset), previous) << rawValue(preset);
        previous = wpm.at(preset);
    }
    // espeak-ng's normal speed is about 175 words per minute (more on plain prose).
    EXPECT_GT(wpm.at(PacePreset::normal), 140);
    EXPECT_LT(wpm.at(PacePreset::normal), 240);
    EXPECT_EQ(calibrator.results().count(synth.defaultVoiceId()), 1U);
}

} // namespace
} // namespace lectorbell::speech
