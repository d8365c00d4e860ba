#include "lectorbell/PacePreset.hpp"

#include <gtest/gtest.h>

namespace lectorbell {
namespace {

TEST(PacePreset, Table) {
    struct Row {
        PacePreset preset;
        const char* raw;
        const char* label;
        float rate;
        double multiplier;
    };
    const Row rows[] = {
        {PacePreset::slow, "slow", "Slow", 0.30F, 0.85},
        {PacePreset::normal, "normal", "Normal", 0.50F, 1.0},
        {PacePreset::fast, "fast", "Fast", 0.55F, 1.15},
        {PacePreset::faster, "faster", "Faster", 0.60F, 1.3},
        {PacePreset::veryFast, "veryFast", "Very Fast", 0.65F, 1.5},
        {PacePreset::maximum, "maximum", "Maximum", 0.72F, 1.75},
    };
    ASSERT_EQ(std::size(rows), allPacePresets.size());
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        const Row& row = rows[i];
        EXPECT_EQ(allPacePresets[i], row.preset);
        EXPECT_EQ(rawValue(row.preset), row.raw);
        EXPECT_EQ(pacePresetFromRawValue(row.raw), row.preset);
        EXPECT_EQ(label(row.preset), row.label);
        EXPECT_EQ(rate(row.preset), row.rate);
        EXPECT_EQ(speedMultiplier(row.preset), row.multiplier);
    }
    EXPECT_EQ(pacePresetFromRawValue("very fast"), std::nullopt);
}

TEST(PacePreset, SplitSpeed) {
    struct Case {
        PacePreset preset;
        double lower;
        double upper;
        double provider;
        double playback;
    };
    const Case cases[] = {
        {PacePreset::maximum, 0.7, 1.2, 1.2, 1.75 / 1.2},
        {PacePreset::fast, 0.7, 1.2, 1.15, 1.0},
        {PacePreset::slow, 0.9, 1.2, 0.9, 0.85 / 0.9},
        {PacePreset::normal, 1.0, 1.0, 1.0, 1.0},
    };
    for (const Case& c : cases) {
        SpeedSplit split = splitSpeed(c.preset, c.lower, c.upper);
        EXPECT_DOUBLE_EQ(split.provider, c.provider) << rawValue(c.preset);
        EXPECT_DOUBLE_EQ(split.playbackRate, c.playback) << rawValue(c.preset);
    }
}

} // namespace
} // namespace lectorbell
