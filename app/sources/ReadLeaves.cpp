#include "lectorbell/AnchorResolver.hpp"
#include "sources/AccessibilityExtractor.hpp"
#include "sources/Leaves.hpp"
#include "sources/TextMarkerAnchor.hpp"
#include "sources/TextSpace.hpp"
#include "sources/TreeQueries.hpp"

namespace lectorbell {

namespace {

constexpr std::size_t headingChainLimit = 4;
constexpr std::size_t rowSearchLimit = 6;

// Cuts the blocks so that their text stays within the limit; true when anything was cut.
bool cutAtLimit(std::vector<ReadingBlock>& blocks, std::int64_t limit) {
    std::int64_t used = 0;
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        std::int64_t size = static_cast<std::int64_t>(blocks[i].text.size());
        if (used + size > limit) {
            std::int64_t keep = UTF16Text::snapDown(limit - used, blocks[i].text);
            blocks[i].text.resize(static_cast<std::size_t>(keep));
            blocks.resize(keep > 0 ? i + 1 : i);
            return true;
        }
        used += size;
    }
    return false;
}

} // namespace

std::optional<AXCursorResult>
AccessibilityExtractor::readLeaves(const ElementRef& hit, const std::vector<ElementRef>& chain,
                                   ElementRef root, ScreenPoint point) {
    auto started = context_.now();
    auto normalDeadline = started + config_.walkDeadline;
    WalkBudget walk = quickWalk_
                          ? WalkBudget{WalkBudget::quickNodes, WalkBudget::quickChars,
                                       started + WalkBudget::quickTime}
                          : WalkBudget{config_.maxNodes, WalkBudget::normalChars, normalDeadline};
    WalkBudget probe{WalkBudget::probeNodes, WalkBudget::probeChars, normalDeadline};

    // The pointed leaf.
    std::optional<Leaf> pointed;
    AXAnswer<ElementSnapshot> hitSnapshot = hit->snapshot();
    if (hitSnapshot && hitSnapshot->role == "AXStaticText" && hitSnapshot->value &&
        !TextSpace::isBlank(*hitSnapshot->value)) {
        bool inHeading = false;
        for (std::size_t i = 0; i < chain.size() && i < headingChainLimit; ++i) {
            inHeading = inHeading || TreeQueries::hasRole(*chain[i], "AXHeading");
        }
        pointed = Leaf{hit, *hitSnapshot->value, hitSnapshot->frame, inHeading, false};
    } else {
        bool rootAboveHit = false;
        for (std::size_t i = 1; i < chain.size(); ++i) {
            rootAboveHit = rootAboveHit || chain[i]->isSame(*root);
        }
        ElementRef start = rootAboveHit ? hit : root;
        std::vector<Leaf> candidates;
        LeafWalk::collect(start, candidates, probe, {false, true, false}, context_);
        if (candidates.empty() && !start->isSame(*root)) {
            LeafWalk::collect(root, candidates, probe, {false, true, false}, context_);
        }
        if (std::optional<std::size_t> best = LeafWalk::bestAligned(candidates, point)) {
            pointed = candidates[*best];
        }
    }
    if (!pointed || context_.cancelled()) {
        return std::nullopt;
    }

    // A hit test can land in a sidebar while the aligned text belongs to the article.
    std::vector<ElementRef> leafChain = TreeQueries::ancestors(
        pointed->element, 60, TreeQueries::StopAt::applicationRole, &context_.cancel);
    if (ElementRef rescoped = TreeQueries::contentRoot(leafChain);
        rescoped && !rescoped->isSame(*root)) {
        root = rescoped;
        context_.trace("cursor: re-scoped to " + TreeQueries::describe(*root) +
                       " around the aligned text");
    }

    if (context_.cancelled()) {
        return std::nullopt;
    }
    for (std::size_t i = 1; i < leafChain.size() && i <= rowSearchLimit; ++i) {
        if (!TreeQueries::hasRole(*leafChain[i], "AXRow")) {
            continue;
        }
        std::vector<Leaf> rows = LeafWalk::tableLeaves(leafChain[i], walk, context_);
        if (rows.empty()) {
            break;
        }
        context_.trace("cursor: table, " + std::to_string(rows.size()) +
                       " rows from the pointed row");
        AXCursorResult result;
        result.blocks = LeafWalk::paragraphs(rows, 0);
        result.truncated = cutAtLimit(result.blocks, config_.maxContinuationUTF16);
        result.precision = AnchorPrecision::line;
        result.confidence = config_.tableConfidence;
        result.strategy = "table";
        result.walkCut = walk.exhausted;
        return result;
    }

    // The anchor inside the pointed leaf.
    std::optional<std::int64_t> offset;
    AnchorPrecision sourcePrecision = AnchorPrecision::character;
    if (pointed->element->parameterizedNames().contains("AXRangeForPosition")) {
        if (AXAnswer<UTF16Range> range = pointed->element->rangeForPosition(point);
            range && range->location != UTF16Range::notFound && range->location >= 0) {
            offset = range->location;
        }
    }
    if (!offset) {
        offset = textMarkerOffset(pointed->text, chain, point, context_);
        sourcePrecision = AnchorPrecision::word;
    }
    ResolvedAnchor anchor{0, AnchorPrecision::element};
    if (offset) {
        anchor = AnchorResolver::resolve(pointed->text, *offset, sourcePrecision);
    }

    if (context_.cancelled()) {
        return std::nullopt;
    }
    std::vector<Leaf> following;
    LeafWalk::forwardWalk(pointed->element, root, following, walk, context_);

    std::vector<Leaf> fromAnchor;
    if (std::u16string rest = UTF16Text::suffix(pointed->text, anchor.utf16Offset);
        !TextSpace::isBlank(rest)) {
        fromAnchor.push_back(*pointed);
        fromAnchor.front().text = std::move(rest);
    }
    fromAnchor.insert(fromAnchor.end(), following.begin(), following.end());
    std::vector<Leaf> fromLeafStart{*pointed};
    fromLeafStart.insert(fromLeafStart.end(), following.begin(), following.end());

    AXCursorResult result;
    result.blocks = LeafWalk::paragraphs(fromAnchor, 0);
    result.truncated = cutAtLimit(result.blocks, config_.maxContinuationUTF16);
    result.precision = anchor.precision;
    result.confidence = config_.leafWalkConfidence;
    result.strategy = "leaf-walk";
    result.walkCut = walk.exhausted;
    AnchorRefinementHint hint{pointed->text, pointed->frame.value_or(ScreenRect{}),
                              LeafWalk::paragraphs(fromLeafStart, 0)};
    cutAtLimit(*hint.blocksFromLeafOffset, config_.maxContinuationUTF16);
    result.refinement = std::move(hint);
    if (result.blocks.empty()) {
        return std::nullopt;
    }
    return result;
}

} // namespace lectorbell
