#pragma once

#include "lectorbell/ReadingModel.hpp"

#include <chrono>
#include <cstdint>

namespace lectorbell {

// The caller's settings for text at the pointer.
struct ExtractorConfig {
    // Upper bound of the text taken after the anchor, in UTF-16 units.
    std::int64_t maxContinuationUTF16 = 20000;
    std::int64_t maxNodes = 6000;
    std::chrono::milliseconds walkDeadline{1500};
    // Leaf text and marker streams in trace lines: a developer setting, off by default.
    bool devLogExcerpts = false;
    ConfidenceCategory textViewConfidence = ConfidenceCategory::high;
    ConfidenceCategory tableConfidence = ConfidenceCategory::medium;
    ConfidenceCategory leafWalkConfidence = ConfidenceCategory::medium;
};

} // namespace lectorbell
