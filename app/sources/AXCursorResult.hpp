#pragma once

#include "lectorbell/ReadingModel.hpp"
#include "lectorbell/ScreenGeometry.hpp"

#include <optional>
#include <string>
#include <vector>

namespace lectorbell {

// What a later OCR pass needs to correct the start of an accessibility reading.
struct AnchorRefinementHint {
    std::u16string leafText;
    ScreenRect leafFrame;
    // The blocks built when reading starts at the leaf's beginning instead of the resolved word.
    std::optional<std::vector<ReadingBlock>> blocksFromLeafOffset;
};

// The text at the pointer as the accessibility tree gives it, from the anchor on.
struct AXCursorResult {
    std::vector<ReadingBlock> blocks;
    AnchorPrecision precision = AnchorPrecision::element;
    std::optional<ConfidenceCategory> confidence;
    // Cut at the configured continuation limit.
    bool truncated = false;
    std::optional<AnchorRefinementHint> refinement;
    // "text-view", "table" or "leaf-walk".
    std::string strategy;
    // The leaf walk stopped because its budget ran out.
    bool walkCut = false;
};

} // namespace lectorbell
