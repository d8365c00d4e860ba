#pragma once

#include "lectorbell/ReadingModel.hpp"
#include "platform/AccessibilityElement.hpp"
#include "sources/WalkContext.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace lectorbell {

// One run of static text found in the tree, or one spoken table row.
struct Leaf {
    ElementRef element;
    std::u16string text;
    std::optional<ScreenRect> frame;
    bool isHeading = false;
    bool isTableRow = false;
};

struct CollectOptions {
    bool inHeading = false;
    bool isRoot = false;
    // The forward walk leaves navigation, banners and the like out; the probe does not.
    bool skipLandmarks = false;
    // Nesting below the walk's start: absurdly deep (or cyclic) trees are cut off here.
    int depth = 0;
};

inline constexpr int maxCollectDepth = 256;

namespace LeafWalk {

// Appends the readable leaves under `element`, depth first, until the budget runs out.
void collect(const ElementRef& element, std::vector<Leaf>& leaves, WalkBudget& budget,
             CollectOptions options, const WalkContext& context);

// The leaf whose frame lines up best with the point, or none near enough.
std::optional<std::size_t> bestAligned(const std::vector<Leaf>& leaves, ScreenPoint point);

// The leaves after `leaf` in document order under `root`.
void forwardWalk(const ElementRef& leaf, const ElementRef& root, std::vector<Leaf>& leaves,
                 WalkBudget& budget, const WalkContext& context);

// The spoken rows of the table that holds `row`, from that row on (from the first row when
// `row` is the table itself).
std::vector<Leaf> tableLeaves(const ElementRef& rowOrTable, WalkBudget& budget,
                              const WalkContext& context);

// Consecutive leaves joined into paragraph blocks.
std::vector<ReadingBlock> paragraphs(const std::vector<Leaf>& leaves, std::int64_t startOrder);

} // namespace LeafWalk

} // namespace lectorbell
