#pragma once

#include "platform/AccessibilityElement.hpp"
#include "sources/AXCursorResult.hpp"
#include "sources/ExtractorConfig.hpp"
#include "sources/WalkContext.hpp"

#include <optional>

namespace lectorbell {

// Reads a text view (an editor, a text area) that maps a screen point to a character offset.
std::optional<AXCursorResult> readTextView(AccessibilityElement& element, ScreenPoint point,
                                           const ExtractorConfig& config,
                                           const WalkContext& context);

// The trace words for a result's size and precision: " blocks, precision word".
std::string blocksAndPrecision(std::size_t blockCount, AnchorPrecision precision);

} // namespace lectorbell
