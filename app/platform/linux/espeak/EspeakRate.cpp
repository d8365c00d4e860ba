#include "platform/linux/espeak/EspeakRate.hpp"

#include "platform/PlatformSynthesizer.hpp"

#include <algorithm>
#include <cmath>

namespace lectorbell::platform::espeak {

namespace {
// espeak-ng's own normal speed (espeakRATE_NORMAL) and slowest setting (espeakRATE_MINIMUM).
constexpr double normalWpm = 175.0;
constexpr double slowestWpm = 80.0;
// Above normal, each 0.1 of rate multiplies the speed by 2^(0.367), so the pace presets
// (0.55, 0.60, 0.65, 0.72) land on about 1.14x, 1.29x, 1.46x and 1.75x of normal: the same
// steps as their speed multipliers for streaming voices. 1.0 gives about 3.6x (624 wpm), which
// espeak-ng reaches with its built-in Sonic speed-up.
constexpr double doublingsPerUnitAboveNormal = 3.67;
} // namespace

// The mapping, monotone over the whole scale and continuous at 0.5:
//   rate in [0, 0.5]:  linear from 80 wpm (espeak-ng's slowest) to 175 wpm (its normal speed);
//   rate in [0.5, 1]:  175 * 2^(3.67 * (rate - 0.5)), i.e. exponential, as speed is perceived.
// Rates outside 0..1 (and NaN) are clamped first. Measured speech runs about 1.18x the setting on
// English prose (175 gives about 207 words per minute).
int espeakWordsPerMinute(float rate) {
    double r = std::isnan(rate) ? PlatformSynthesizer::normalRate : rate;
    r = std::clamp(r, double{PlatformSynthesizer::minimumRate},
                   double{PlatformSynthesizer::maximumRate});
    double wpm = r <= 0.5 ? slowestWpm + (normalWpm - slowestWpm) * (r / 0.5)
                          : normalWpm * std::exp2(doublingsPerUnitAboveNormal * (r - 0.5));
    return static_cast<int>(std::lround(wpm));
}

} // namespace lectorbell::platform::espeak
