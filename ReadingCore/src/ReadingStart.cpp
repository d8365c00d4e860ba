#include "LayoutGeometry.hpp"
#include "lectorbell/AnchorResolver.hpp"
#include "lectorbell/ReadingOrderEngine.hpp"

#include <algorithm>
#include <cmath>

namespace lectorbell::ReadingOrderEngine {

namespace {

// A paragraph in reading order with the block it came from.
struct Placed {
    const Paragraph* paragraph;
    std::size_t block;
    std::optional<std::int64_t> sideColumn;
};

double distanceOutside(double value, double low, double high) {
    if (value < low) {
        return low - value;
    }
    return value > high ? value - high : 0.0;
}

std::vector<Candidate> candidatesFor(const std::vector<Placed>& placed, ScreenPoint pointer,
                                     const Config& config) {
    std::vector<Candidate> candidates;
    for (std::size_t p = 0; p < placed.size(); ++p) {
        const auto& lines = placed[p].paragraph->lines;
        for (std::size_t l = 0; l < lines.size(); ++l) {
            const ScreenRect& rect = lines[l].rect;
            const double h = detail::usableHeight(rect);
            const double vDist = distanceOutside(pointer.y, rect.minY(), rect.maxY());
            const double hDist = distanceOutside(pointer.x, rect.minX(), rect.maxX());
            if (vDist <= h * config.verticalSnapLines &&
                hDist <= std::max(h * config.horizontalSnapLines, config.minHorizontalSnap)) {
                candidates.push_back({static_cast<std::int64_t>(p), static_cast<std::int64_t>(l),
                                      4 * vDist + hDist, hDist, rect});
            }
        }
    }
    std::stable_sort(candidates.begin(), candidates.end(),
                     [](const Candidate& a, const Candidate& b) { return a.score < b.score; });
    return candidates;
}

// Another column: a line of another block that sits beside the best line, not above or below.
bool inAnotherColumn(const Candidate& best, const Candidate& other,
                     const std::vector<Placed>& placed) {
    return placed[static_cast<std::size_t>(other.pIndex)].block !=
               placed[static_cast<std::size_t>(best.pIndex)].block &&
           best.rect.horizontalOverlap(other.rect) <= 0;
}

// The start line when the pointer is beside lines of two columns at once, or nothing when it
// is too close to call. In a gutter or a left margin the text that begins just after the
// pointer wins, provided the pointer is nearer to it by half a line height; a pointer midway
// between two columns is ambiguous.
std::optional<Candidate> settleColumns(const Candidate& best, const Candidate& rival,
                                       ScreenPoint pointer) {
    const Candidate& left = best.rect.minX() <= rival.rect.minX() ? best : rival;
    const Candidate& right = &left == &best ? rival : best;
    const bool betweenLeftEdges = pointer.x >= left.rect.minX() && pointer.x <= right.rect.minX();
    const double h = std::max(detail::usableHeight(best.rect), detail::usableHeight(rival.rect));
    if (betweenLeftEdges && right.hDist + 0.5 * h < left.hDist) {
        return right;
    }
    return std::nullopt;
}

// The offset in the paragraph where the pointed line's pointed word starts, and how sure that
// is: a word under (or just before) the pointer is a word; a pointer beside the line, or a line
// without words, gives the line's start.
ResolvedAnchor pointedOffset(const Paragraph& paragraph, std::size_t l, ScreenPoint pointer,
                             double hDist) {
    const std::int64_t lineStart = paragraph.lineOffsets[l];
    const Line& line = paragraph.lines[l];
    if (paragraph.role == BlockRole::table || hDist > 0 || line.words.empty()) {
        return {lineStart, AnchorPrecision::line};
    }
    auto word = std::find_if(line.words.begin(), line.words.end(),
                             [&](const OCRWord& w) { return pointer.x < w.rect.maxX(); });
    if (word == line.words.end()) {
        word = std::prev(line.words.end());
    }
    return {lineStart + word->utf16Range.location, AnchorPrecision::word};
}

// Trust in the text read: the mean line confidence weighted by text length. Wrong words still
// come with fairly high confidences, so "high" needs nearly clean lines.
ConfidenceCategory confidenceOf(const std::vector<Placed>& placed, std::size_t from) {
    double weighted = 0;
    double total = 0;
    for (std::size_t p = from; p < placed.size(); ++p) {
        for (const Line& line : placed[p].paragraph->lines) {
            const auto weight = static_cast<double>(line.text.size());
            weighted += weight * static_cast<double>(line.confidence);
            total += weight;
        }
    }
    const double mean = total > 0 ? weighted / total : 0;
    if (mean >= 0.85) {
        return ConfidenceCategory::high;
    }
    return mean >= 0.6 ? ConfidenceCategory::medium : ConfidenceCategory::low;
}

std::vector<Placed> placedParagraphs(const std::vector<Block>& blocks) {
    std::vector<Placed> placed;
    for (std::size_t b = 0; b < blocks.size(); ++b) {
        for (const Paragraph& paragraph : blocks[b].paragraphs) {
            placed.push_back({&paragraph, b, blocks[b].sideColumn});
        }
    }
    return placed;
}

// The paragraphs from `start` on, side columns other than the start's left out when asked;
// the start paragraph from `offset`.
OCRReadingResult resultFrom(const std::vector<Placed>& placed, std::size_t start,
                            std::int64_t offset, const Config& config) {
    OCRReadingResult result;
    result.confidence = confidenceOf(placed, start);
    const std::optional<std::int64_t> startSide = placed[start].sideColumn;
    for (std::size_t p = start; p < placed.size(); ++p) {
        const Paragraph& paragraph = *placed[p].paragraph;
        if (config.skipSidebars && placed[p].sideColumn && placed[p].sideColumn != startSide) {
            continue;
        }
        std::u16string text =
            p == start ? UTF16Text::suffix(paragraph.text, offset) : paragraph.text;
        if (text.empty()) {
            continue;
        }
        result.blocks.push_back({Uuid::random(), std::move(text), paragraph.role, paragraph.rect,
                                 static_cast<std::int64_t>(p)});
    }
    return result;
}

} // namespace

ReadOutcome readAll(const std::vector<OCRLine>& lines, const Config& config) {
    const std::vector<Block> blocks = layout(lines, config);
    const std::vector<Placed> placed = placedParagraphs(blocks);
    // The first paragraph of the main text; a page of side columns only starts at its top.
    std::size_t start = 0;
    while (start < placed.size() && config.skipSidebars && placed[start].sideColumn) {
        ++start;
    }
    if (start == placed.size()) {
        start = 0;
    }
    OCRReadingResult result;
    if (!placed.empty()) {
        result = resultFrom(placed, start, 0, config);
    }
    if (result.blocks.empty()) {
        return ReadingError{ReadingError::Kind::ocrFoundNothing};
    }
    result.precision = AnchorPrecision::element;
    return result;
}

ReadOutcome read(const std::vector<OCRLine>& lines, ScreenPoint pointer, const Config& config) {
    const std::vector<Block> blocks = layout(lines, config);
    const std::vector<Placed> placed = placedParagraphs(blocks);
    if (placed.empty() || !std::isfinite(pointer.x) || !std::isfinite(pointer.y)) {
        return ReadingError{placed.empty() ? ReadingError::Kind::ocrFoundNothing
                                           : ReadingError::Kind::noReadableTextNearCursor};
    }
    const std::vector<Candidate> candidates = candidatesFor(placed, pointer, config);
    if (candidates.empty()) {
        return ReadingError{ReadingError::Kind::noReadableTextNearCursor};
    }
    Candidate start = candidates.front();
    auto rival = std::find_if(candidates.begin() + 1, candidates.end(), [&](const Candidate& c) {
        return inAnotherColumn(start, c, placed);
    });
    if (rival != candidates.end() && start.hDist > 0 && rival->hDist > 0 &&
        rival->score - start.score < std::max(8.0, 0.25 * start.score)) {
        std::optional<Candidate> settled = settleColumns(start, *rival, pointer);
        if (!settled) {
            return ReadingError{ReadingError::Kind::ambiguousPosition};
        }
        start = *settled;
    }

    const auto startIndex = static_cast<std::size_t>(start.pIndex);
    const Paragraph& first = *placed[startIndex].paragraph;
    ResolvedAnchor pointed =
        pointedOffset(first, static_cast<std::size_t>(start.lIndex), pointer, start.hDist);
    ResolvedAnchor anchor =
        AnchorResolver::resolve(first.text, pointed.utf16Offset, pointed.precision);

    OCRReadingResult result = resultFrom(placed, startIndex, anchor.utf16Offset, config);
    result.precision = anchor.precision;
    if (result.blocks.empty()) {
        return ReadingError{ReadingError::Kind::ocrFoundNothing};
    }
    return result;
}

} // namespace lectorbell::ReadingOrderEngine
