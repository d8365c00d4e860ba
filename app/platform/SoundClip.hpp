#pragma once

#include "platform/PcmAudio.hpp"

#include <cstdint>
#include <span>
#include <string>
#include <variant>

namespace lectorbell::platform {

// A short sound held in memory, ready to be scheduled on an audio output.
struct SoundClip {
    PcmFormat format;
    PcmSamples samples;

    // Reads a WAV file's bytes: 16-bit integer PCM only; otherwise the reason.
    static std::variant<SoundClip, std::string> fromWav(std::span<const std::uint8_t> bytes);

    // The samples in another format: resampled linearly, channels mixed down or copied.
    PcmSamples convertedTo(PcmFormat target) const;
};

} // namespace lectorbell::platform
