#include "platform/SoundClip.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <optional>

namespace lectorbell::platform {

namespace {

std::uint32_t littleEndian(std::span<const std::uint8_t> bytes, std::size_t at, int size) {
    std::uint32_t value = 0;
    for (int i = size - 1; i >= 0; --i) {
        value = value << 8 | bytes[at + static_cast<std::size_t>(i)];
    }
    return value;
}

bool tagIs(std::span<const std::uint8_t> bytes, std::size_t at, const char* tag) {
    return std::memcmp(bytes.data() + at, tag, 4) == 0;
}

constexpr std::uint32_t integerPcm = 1;
constexpr std::uint32_t extensible = 0xFFFE;

} // namespace

std::variant<SoundClip, std::string> SoundClip::fromWav(std::span<const std::uint8_t> bytes) {
    if (bytes.size() < 12 || !tagIs(bytes, 0, "RIFF") || !tagIs(bytes, 8, "WAVE")) {
        return std::string{"not a WAV file"};
    }
    std::optional<PcmFormat> format;
    std::size_t at = 12;
    while (at + 8 <= bytes.size()) {
        const std::uint32_t size = littleEndian(bytes, at + 4, 4);
        const std::size_t body = at + 8;
        if (size > bytes.size() - body) {
            return std::string{"chunk runs past the end of the file"};
        }
        if (tagIs(bytes, at, "fmt ")) {
            if (size < 16) {
                return std::string{"format chunk too short"};
            }
            std::uint32_t tag = littleEndian(bytes, body, 2);
            // The extensible form names its sample type in a GUID whose first two bytes are
            // the classic tag.
            if (tag == extensible && size >= 26) {
                tag = littleEndian(bytes, body + 24, 2);
            }
            const auto channels = static_cast<int>(littleEndian(bytes, body + 2, 2));
            const auto rate = static_cast<int>(littleEndian(bytes, body + 4, 4));
            const std::uint32_t bits = littleEndian(bytes, body + 14, 2);
            if (tag != integerPcm || bits != 16 || channels < 1 || rate < 1) {
                return std::string{"only 16-bit integer PCM is read"};
            }
            format = PcmFormat{rate, channels};
        } else if (tagIs(bytes, at, "data")) {
            if (!format) {
                return std::string{"sound data before its format"};
            }
            SoundClip clip{*format, PcmSamples(size / 2)};
            for (std::size_t i = 0; i < clip.samples.size(); ++i) {
                clip.samples[i] = static_cast<std::int16_t>(littleEndian(bytes, body + i * 2, 2));
            }
            clip.samples.resize(clip.samples.size() -
                                clip.samples.size() % static_cast<std::size_t>(format->channels));
            return clip;
        }
        at = body + size + (size & 1U); // chunks are padded to an even size
    }
    return std::string{"no sound data"};
}

PcmSamples SoundClip::convertedTo(PcmFormat target) const {
    if (target == format || target.channels < 1 || target.sampleRate < 1) {
        return target == format ? samples : PcmSamples{};
    }
    const auto from = static_cast<std::size_t>(format.channels);
    const auto to = static_cast<std::size_t>(target.channels);
    const std::size_t frames = samples.size() / from;
    if (frames == 0) {
        return {};
    }
    // One channel's value at a source frame: the mean of the source's channels when mixing
    // down, its own channel (or the last one) otherwise.
    auto sampleAt = [&](std::size_t frame, std::size_t channel) -> double {
        const std::int16_t* row = samples.data() + frame * from;
        if (to == 1 && from > 1) {
            double sum = 0;
            for (std::size_t c = 0; c < from; ++c) {
                sum += row[c];
            }
            return sum / static_cast<double>(from);
        }
        return row[std::min(channel, from - 1)];
    };
    const double step = static_cast<double>(format.sampleRate) / target.sampleRate;
    const auto outFrames =
        static_cast<std::size_t>(std::floor(static_cast<double>(frames - 1) / step) + 1);
    PcmSamples out(outFrames * to);
    for (std::size_t frame = 0; frame < outFrames; ++frame) {
        const double position = static_cast<double>(frame) * step;
        const auto before = std::min(static_cast<std::size_t>(position), frames - 1);
        const std::size_t after = std::min(before + 1, frames - 1);
        const double weight = position - static_cast<double>(before);
        for (std::size_t channel = 0; channel < to; ++channel) {
            const double value =
                sampleAt(before, channel) * (1 - weight) + sampleAt(after, channel) * weight;
            out[frame * to + channel] =
                static_cast<std::int16_t>(std::clamp(std::lround(value), -32768L, 32767L));
        }
    }
    return out;
}

} // namespace lectorbell::platform
