#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace lectorbell {

enum class PacePreset { slow, normal, fast, faster, veryFast, maximum };

inline constexpr std::array<PacePreset, 6> allPacePresets{
    PacePreset::slow,   PacePreset::normal,   PacePreset::fast,
    PacePreset::faster, PacePreset::veryFast, PacePreset::maximum,
};

std::string_view rawValue(PacePreset preset);
std::optional<PacePreset> pacePresetFromRawValue(std::string_view raw);
std::string_view label(PacePreset preset);
// On the platform voice's 0..1 scale, where 0.5 is the voice's normal speed.
float rate(PacePreset preset);
double speedMultiplier(PacePreset preset);

struct SpeedSplit {
    // Applied by the speech provider, inside its supported range.
    double provider = 1.0;
    // The rest, applied by faster playback.
    double playbackRate = 1.0;
};
SpeedSplit splitSpeed(PacePreset preset, double providerLower, double providerUpper);

} // namespace lectorbell
