#include "speech/SpeechSegments.hpp"

#include <algorithm>
#include <cstdlib>

namespace lectorbell::speech {

namespace {
// Below this amplitude (about -50 dBFS) a sample counts as silence.
constexpr int silenceThreshold = 100;
constexpr int keptLeadMs = 2;
constexpr int silentSegmentMs = 1;
} // namespace

std::vector<SoundSegment> segmentsAtWords(const platform::SynthesizedSpeech& speech) {
    const std::int64_t channels = std::max(speech.format.channels, 1);
    const std::int64_t frames = static_cast<std::int64_t>(speech.samples.size()) / channels;
    std::vector<SoundSegment> segments;
    if (frames == 0) {
        std::int64_t silent = std::max(speech.format.sampleRate * silentSegmentMs / 1000, 1);
        SoundSegment segment{platform::PcmSamples(static_cast<std::size_t>(silent * channels), 0),
                             {}};
        for (const platform::SpokenWord& word : speech.words) {
            segment.words.push_back(word.range);
        }
        segments.push_back(std::move(segment));
        return segments;
    }

    std::int64_t cut = 0;
    std::vector<UTF16Range> pending;
    auto emit = [&](std::int64_t until) {
        if (until <= cut) {
            return;
        }
        segments.push_back({platform::PcmSamples(speech.samples.begin() + cut * channels,
                                                 speech.samples.begin() + until * channels),
                            std::move(pending)});
        pending.clear();
        cut = until;
    };
    for (const platform::SpokenWord& word : speech.words) {
        emit(std::clamp<std::int64_t>(word.frame, 0, frames - 1));
        pending.push_back(word.range);
    }
    emit(frames);
    return segments;
}

void trimLeadingSilence(platform::SynthesizedSpeech& speech) {
    const auto channels = static_cast<std::size_t>(std::max(speech.format.channels, 1));
    auto loud = std::find_if(speech.samples.begin(), speech.samples.end(),
                             [](std::int16_t s) { return std::abs(int{s}) > silenceThreshold; });
    if (loud == speech.samples.end()) {
        return;
    }
    auto firstLoudFrame = static_cast<std::int64_t>(loud - speech.samples.begin()) /
                          static_cast<std::int64_t>(channels);
    std::int64_t keep = speech.format.sampleRate * keptLeadMs / 1000;
    std::int64_t drop = std::max<std::int64_t>(firstLoudFrame - keep, 0);
    if (drop == 0) {
        return;
    }
    speech.samples.erase(speech.samples.begin(),
                         speech.samples.begin() + drop * static_cast<std::int64_t>(channels));
    for (platform::SpokenWord& word : speech.words) {
        word.frame = std::max<std::int64_t>(word.frame - drop, 0);
    }
}

} // namespace lectorbell::speech
