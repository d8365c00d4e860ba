#pragma once

#include "lectorbell/PacePreset.hpp"
#include "platform/PlatformSynthesizer.hpp"

#include <map>
#include <string>
#include <string_view>

namespace lectorbell::speech {

// Measures how many words per minute each pace really gives with a voice on this computer, by
// rendering a fixed passage offline (nothing is played).
class PaceCalibrator {
public:
    static constexpr std::u16string_view passage =
        u"Reading speed depends on the voice, the language and the text itself. This short "
        u"passage is used only to measure how many words per minute each pace setting produces "
        u"on this computer with the voice you selected, so the numbers you see are measured "
        u"rather than assumed.";

    using Measurement = std::map<PacePreset, double>;

    explicit PaceCalibrator(platform::PlatformSynthesizer& synth);

    // Seconds of speech the passage takes at `rate` with the voice; 0 when the voice fails.
    double duration(float rate, const std::string& voiceIdentifier);
    // Words per minute for every pace preset; kept in results().
    const Measurement& measure(const std::string& voiceIdentifier);

    const std::map<std::string, Measurement>& results() const { return results_; }
    bool isMeasuring() const { return measuring_; }

private:
    platform::PlatformSynthesizer& synth_;
    std::map<std::string, Measurement> results_;
    bool measuring_ = false;
};

} // namespace lectorbell::speech
