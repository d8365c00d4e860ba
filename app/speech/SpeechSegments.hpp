#pragma once

#include "platform/PlatformSynthesizer.hpp"

#include <cstdint>
#include <vector>

namespace lectorbell::speech {

// A stretch of rendered sound and the words that begin at its first frame.
struct SoundSegment {
    platform::PcmSamples samples;
    std::vector<UTF16Range> words;
};

// Cuts rendered speech at its word starts, so that each word's sound begins a segment. Sound
// before the first word forms a segment of its own. Never empty: speech without sound gives one
// short silent segment, so the utterance still starts and finishes.
std::vector<SoundSegment> segmentsAtWords(const platform::SynthesizedSpeech& speech);

// Drops the silence before the first sound, keeping a few milliseconds so the first consonant's
// attack is not cut; word frames move with it. Used for the first utterance of a reading only:
// between utterances the voice's own pauses are kept.
void trimLeadingSilence(platform::SynthesizedSpeech& speech);

} // namespace lectorbell::speech
