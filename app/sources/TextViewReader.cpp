#include "sources/TextViewReader.hpp"

#include "lectorbell/AnchorResolver.hpp"
#include "lectorbell/TextSegmenter.hpp"
#include "sources/TreeQueries.hpp"

#include <algorithm>

namespace lectorbell {

namespace {

constexpr std::int64_t lookBehindUTF16 = 2000;

std::vector<ReadingBlock> blocksFrom(std::u16string_view text) {
    std::vector<ReadingBlock> blocks;
    for (std::u16string& paragraph : TextSegmenter::paragraphs(text)) {
        ReadingBlock block;
        block.id = Uuid::random();
        block.text = std::move(paragraph);
        block.role = BlockRole::body;
        block.sourceOrder = static_cast<std::int64_t>(blocks.size());
        blocks.push_back(std::move(block));
    }
    return blocks;
}

} // namespace

std::string blocksAndPrecision(std::size_t blockCount, AnchorPrecision precision) {
    return std::to_string(blockCount) + " blocks, precision " + std::string{description(precision)};
}

std::optional<AXCursorResult> readTextView(AccessibilityElement& element, ScreenPoint point,
                                           const ExtractorConfig& config,
                                           const WalkContext& context) {
    std::set<std::string> queries = element.parameterizedNames();
    if (!queries.contains("AXRangeForPosition") || TreeQueries::isSecure(element)) {
        return std::nullopt;
    }
    bool stringForRange = queries.contains("AXStringForRange");
    if (!stringForRange && !element.value()) {
        return std::nullopt;
    }
    context.trace("text-view: candidate " + TreeQueries::describe(element));
    if (context.cancelled()) {
        return std::nullopt;
    }

    if (AXAnswer<ScreenRect> frame = element.frame(); frame && !frame->contains(point)) {
        if (frame->verticalDistance(point) == 0 && frame->horizontalDistance(point) < 80 &&
            frame->width() > 4) {
            point.x = std::clamp(point.x, frame->minX() + 2, frame->maxX() - 2);
        } else {
            context.trace("text-view: pointer outside view frame");
            return std::nullopt;
        }
    }
    AXAnswer<UTF16Range> pointed = element.rangeForPosition(point);
    if (!pointed || pointed->location == UTF16Range::notFound || pointed->location < 0) {
        context.trace("text-view: AXRangeForPosition failed");
        return std::nullopt;
    }
    if (context.cancelled()) {
        return std::nullopt;
    }
    std::int64_t count = 0;
    if (AXAnswer<std::int64_t> n = element.numberOfCharacters()) {
        count = *n;
    } else if (AXAnswer<std::u16string> value = element.value()) {
        count = static_cast<std::int64_t>(value->size());
    }
    if (count < 1) {
        context.trace("text-view: empty");
        return std::nullopt;
    }
    std::int64_t location = std::min(pointed->location, count - 1);
    if (queries.contains("AXBoundsForRange")) {
        if (AXAnswer<ScreenRect> bounds = element.boundsForRange({location, 1})) {
            double lineHeight = bounds->height() <= 8 ? 8 : bounds->height();
            double distance = bounds->verticalDistance(point);
            if (distance > 1.5 * lineHeight) {
                context.trace("text-view: character bounds " + traceNumber(distance) +
                              "pt from pointer (line " + traceNumber(lineHeight) + ")");
                return std::nullopt;
            }
        }
    }
    if (context.cancelled()) {
        return std::nullopt;
    }
    std::int64_t start = std::max<std::int64_t>(0, location - lookBehindUTF16);
    std::int64_t end = std::min(count, location + config.maxContinuationUTF16);
    std::optional<std::u16string> text;
    if (stringForRange) {
        text = element.stringForRange({start, end - start}).optional();
    }
    if (!text) {
        if (AXAnswer<std::u16string> value = element.value()) {
            text = UTF16Text::substring(*value, {start, end - start});
        }
    }
    if (!text) {
        context.trace("text-view: could not fetch text");
        return std::nullopt;
    }
    ResolvedAnchor anchor =
        AnchorResolver::resolve(*text, location - start, AnchorPrecision::character);
    std::vector<ReadingBlock> blocks = blocksFrom(UTF16Text::suffix(*text, anchor.utf16Offset));
    if (blocks.empty()) {
        context.trace("text-view: nothing after anchor");
        return std::nullopt;
    }
    context.trace("text-view: " + blocksAndPrecision(blocks.size(), anchor.precision));
    AXCursorResult result;
    result.blocks = std::move(blocks);
    result.precision = anchor.precision;
    result.confidence = config.textViewConfidence;
    result.truncated = end < count;
    result.strategy = "text-view";
    return result;
}

} // namespace lectorbell
