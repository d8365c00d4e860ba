#include "lectorbell/PacePreset.hpp"

#include "EnumNames.hpp"

namespace lectorbell {

namespace {

constexpr std::array<std::string_view, 6> paceNames{"slow",   "normal",   "fast",
                                                    "faster", "veryFast", "maximum"};
constexpr std::array<std::string_view, 6> paceLabels{"Slow",   "Normal",    "Fast",
                                                     "Faster", "Very Fast", "Maximum"};
constexpr std::array<float, 6> paceRates{0.30F, 0.50F, 0.55F, 0.60F, 0.65F, 0.72F};
constexpr std::array<double, 6> paceMultipliers{0.85, 1.0, 1.15, 1.3, 1.5, 1.75};

std::size_t position(PacePreset preset) {
    return static_cast<std::size_t>(preset);
}

} // namespace

std::string_view rawValue(PacePreset preset) {
    return detail::nameOf(paceNames, preset);
}
std::optional<PacePreset> pacePresetFromRawValue(std::string_view raw) {
    return detail::caseNamed<PacePreset>(paceNames, raw);
}
std::string_view label(PacePreset preset) {
    return detail::nameOf(paceLabels, preset);
}
float rate(PacePreset preset) {
    return paceRates.at(position(preset));
}
double speedMultiplier(PacePreset preset) {
    return paceMultipliers.at(position(preset));
}

SpeedSplit splitSpeed(PacePreset preset, double providerLower, double providerUpper) {
    double multiplier = speedMultiplier(preset);
    double provider = multiplier;
    if (provider <= providerLower) {
        provider = providerLower;
    }
    if (providerUpper < provider) {
        provider = providerUpper;
    }
    return {provider, multiplier / provider};
}

} // namespace lectorbell
