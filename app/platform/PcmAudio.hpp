#pragma once

#include <cstdint>
#include <vector>

namespace lectorbell::platform {

// Signed 16-bit PCM, channels interleaved: the one sample format every voice here produces.
struct PcmFormat {
    int sampleRate = 22050;
    int channels = 1;

    friend bool operator==(const PcmFormat&, const PcmFormat&) = default;
};

using PcmSamples = std::vector<std::int16_t>;

inline std::int64_t frameCount(const PcmSamples& samples, PcmFormat format) {
    return format.channels > 0 ? static_cast<std::int64_t>(samples.size()) / format.channels : 0;
}

inline double secondsOf(std::int64_t frames, PcmFormat format) {
    return format.sampleRate > 0 ? static_cast<double>(frames) / format.sampleRate : 0.0;
}

} // namespace lectorbell::platform
