#include "speech/PaceCalibrator.hpp"

#include "lectorbell/ListeningStats.hpp"

namespace lectorbell::speech {

PaceCalibrator::PaceCalibrator(platform::PlatformSynthesizer& synth)
    : synth_{synth} {}

double PaceCalibrator::duration(float rate, const std::string& voiceIdentifier) {
    std::optional<platform::SynthesizedSpeech> speech =
        synth_.render(passage, voiceIdentifier, rate);
    if (!speech) {
        return 0.0;
    }
    return platform::secondsOf(platform::frameCount(speech->samples, speech->format),
                               speech->format);
}

const PaceCalibrator::Measurement& PaceCalibrator::measure(const std::string& voiceIdentifier) {
    measuring_ = true;
    const auto words = static_cast<double>(ListeningStats::countWords(passage));
    Measurement measurement;
    for (PacePreset preset : allPacePresets) {
        double seconds = duration(rate(preset), voiceIdentifier);
        measurement[preset] = seconds > 0 ? words * 60.0 / seconds : 0.0;
    }
    measuring_ = false;
    return results_[voiceIdentifier] = std::move(measurement);
}

} // namespace lectorbell::speech
