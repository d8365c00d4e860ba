#include "LayoutGeometry.hpp"
#include "lectorbell/ReadingOrderEngine.hpp"

#include <algorithm>
#include <numeric>

namespace lectorbell::ReadingOrderEngine {

namespace {

using detail::topThenLeft;
using detail::unionOf;

class UnionFind {
public:
    explicit UnionFind(std::size_t n)
        : parent_(n) {
        std::iota(parent_.begin(), parent_.end(), 0);
    }
    std::size_t find(std::size_t i) {
        while (parent_[i] != i) {
            parent_[i] = parent_[parent_[i]];
            i = parent_[i];
        }
        return i;
    }
    void join(std::size_t a, std::size_t b) { parent_[find(a)] = find(b); }

private:
    std::vector<std::size_t> parent_;
};

bool sameBlock(const Line& a, const Line& b, double gap) {
    const double hMin = std::max(1.0, std::min(a.rect.height(), b.rect.height()));
    const double hMax = std::max(a.rect.height(), b.rect.height());
    if (gap < -0.5 * hMin || hMax / hMin >= 1.6) {
        return false;
    }
    const double narrower = std::min(a.rect.width(), b.rect.width());
    return a.rect.horizontalOverlap(b.rect) >= 0.5 * narrower;
}

} // namespace

double Block::lineHeight() const {
    std::vector<double> heights;
    heights.reserve(lines.size());
    for (const Line& line : lines) {
        heights.push_back(line.rect.height());
    }
    return median(std::move(heights));
}

std::vector<Block> groupIntoBlocks(std::vector<Line> lines) {
    std::sort(lines.begin(), lines.end(),
              [](const Line& a, const Line& b) { return topThenLeft(a.rect, b.rect); });
    UnionFind groups(lines.size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
        for (std::size_t j = i + 1; j < lines.size(); ++j) {
            const double gap = lines[j].rect.minY() - lines[i].rect.maxY();
            if (gap > 2.2 * std::max(lines[i].rect.height(), lines[j].rect.height())) {
                break;
            }
            if (sameBlock(lines[i], lines[j], gap)) {
                groups.join(i, j);
            }
        }
    }
    std::vector<Block> blocks;
    std::vector<std::size_t> blockOfRoot(lines.size(), lines.size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
        std::size_t root = groups.find(i);
        if (blockOfRoot[root] == lines.size()) {
            blockOfRoot[root] = blocks.size();
            blocks.emplace_back();
        }
        blocks[blockOfRoot[root]].lines.push_back(std::move(lines[i]));
    }
    for (Block& block : blocks) {
        block.rect = unionOf(block.lines);
    }
    return blocks;
}

namespace {

// Side columns: at a vertical cut, a column of at least three lines that is less than half as
// wide as the widest column beside it, and holds no table. Navigation and sidebars look like
// this; a second column of an article does not.
void markSideColumns(std::vector<std::vector<Block>>& columns, std::int64_t& nextSide) {
    std::vector<ScreenRect> spans;
    double widest = 0;
    for (const auto& column : columns) {
        ScreenRect span = column.front().rect;
        for (const Block& block : column) {
            span = span.united(block.rect);
        }
        spans.push_back(span);
        widest = std::max(widest, span.width());
    }
    for (std::size_t c = 0; c < columns.size(); ++c) {
        std::size_t lineCount = 0;
        bool hasTable = false;
        for (const Block& block : columns[c]) {
            lineCount += block.lines.size();
            hasTable = hasTable || block.tableRows.has_value();
        }
        if (spans[c].width() >= 0.5 * widest || lineCount < 3 || hasTable) {
            continue;
        }
        const std::int64_t side = nextSide++;
        for (Block& block : columns[c]) {
            if (!block.sideColumn) {
                block.sideColumn = side;
            }
        }
    }
}

// Splits blocks where a new group starts at a block whose `start` reaches past the furthest
// `end` so far by `margin`; the blocks are sorted by `start` first.
template <class Start, class End>
std::vector<std::vector<Block>> cutAlong(std::vector<Block>& blocks, Start start, End end,
                                         double margin) {
    std::stable_sort(blocks.begin(), blocks.end(),
                     [&](const Block& a, const Block& b) { return start(a) < start(b); });
    std::vector<std::vector<Block>> groups;
    double furthest = 0;
    for (Block& block : blocks) {
        if (groups.empty() || start(block) >= furthest + margin) {
            groups.emplace_back();
            furthest = end(block);
        }
        furthest = std::max(furthest, end(block));
        groups.back().push_back(std::move(block));
    }
    return groups;
}

void orderBlocks(std::vector<Block> blocks, double m, std::vector<Block>& out,
                 std::int64_t& nextSide) {
    if (blocks.size() <= 1) {
        std::move(blocks.begin(), blocks.end(), std::back_inserter(out));
        return;
    }
    auto columns = cutAlong(
        blocks, [](const Block& b) { return b.rect.minX(); },
        [](const Block& b) { return b.rect.maxX(); }, 0.4 * m);
    if (columns.size() >= 2) {
        markSideColumns(columns, nextSide);
        for (auto& column : columns) {
            orderBlocks(std::move(column), m, out, nextSide);
        }
        return;
    }
    blocks = std::move(columns.front());
    // Bands may touch or overlap slightly: half the column gap.
    auto bands = cutAlong(
        blocks, [](const Block& b) { return b.rect.minY(); },
        [](const Block& b) { return b.rect.maxY(); }, -0.2 * m);
    if (bands.size() >= 2) {
        for (auto& band : bands) {
            orderBlocks(std::move(band), m, out, nextSide);
        }
        return;
    }
    blocks = std::move(bands.front());
    std::stable_sort(blocks.begin(), blocks.end(),
                     [](const Block& a, const Block& b) { return topThenLeft(a.rect, b.rect); });
    std::move(blocks.begin(), blocks.end(), std::back_inserter(out));
}

} // namespace

std::vector<Block> xyCut(std::vector<Block> blocks) {
    std::vector<double> heights;
    heights.reserve(blocks.size());
    for (const Block& block : blocks) {
        heights.push_back(block.lineHeight());
    }
    const double m = median(std::move(heights));
    std::vector<Block> ordered;
    ordered.reserve(blocks.size());
    std::int64_t nextSide = 0;
    orderBlocks(std::move(blocks), m, ordered, nextSide);
    return ordered;
}

} // namespace lectorbell::ReadingOrderEngine
