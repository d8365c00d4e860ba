// `lectorbell pace [--voice ID]`: the words per minute each pace preset really gives with a voice,
// measured by rendering the calibration passage (nothing is played).

#include "cli/SystemVoice.hpp"
#include "cli/Verbs.hpp"
#include "speech/PaceCalibrator.hpp"

#include <cmath>
#include <cstdio>
#include <iostream>
#include <memory>

namespace lectorbell::cli {

namespace {

int runPace(platform::Platform& platform, const std::string& voice) {
    std::unique_ptr<platform::PlatformSynthesizer> systemVoice =
        openSystemVoice(platform, std::cerr);
    if (!systemVoice) {
        return exitVoiceUnavailable;
    }
    platform::PlatformSynthesizer& synth = *systemVoice;
    speech::PaceCalibrator calibrator{synth};
    const std::string voiceId = voice.empty() ? synth.defaultVoiceId() : voice;
    const speech::PaceCalibrator::Measurement& wpm = calibrator.measure(voiceId);
    std::cout << "voice " << voiceId << '\n';
    for (PacePreset preset : allPacePresets) {
        std::printf("%-9s rate %.2f  %3ld words per minute\n",
                    std::string{rawValue(preset)}.c_str(), static_cast<double>(rate(preset)),
                    std::lround(wpm.at(preset)));
    }
    return 0;
}

} // namespace

void addPaceVerb(CLI::App& app, VerbOutcome& outcome, platform::Platform& platform) {
    auto voice = std::make_shared<std::string>();
    CLI::App* verb =
        app.add_subcommand("pace", "Measure the words per minute of each pace preset with a voice");
    verb->add_option("--voice", *voice,
                     "Voice id (see `lectorbell voices`); default voice if none");
    verb->callback(
        [voice, &outcome, &platform] { outcome.exitStatus = runPace(platform, *voice); });
}

} // namespace lectorbell::cli
