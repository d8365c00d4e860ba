#include "lectorbell/TextSegmenter.hpp"
#include "sources/Leaves.hpp"
#include "sources/TextSpace.hpp"

#include <algorithm>

namespace lectorbell::LeafWalk {

namespace {

bool endsWithTerminalPunctuation(std::u16string_view text) {
    while (!text.empty() && TextSpace::isSpace(text.back())) {
        text.remove_suffix(1);
    }
    return !text.empty() && TextSegmenter::isTerminalPunctuation(text.substr(text.size() - 1));
}

struct OpenBlock {
    std::u16string text;
    std::optional<ScreenRect> bounds;
    bool isHeading = false;
    bool isTableRow = false;
    const Leaf* last = nullptr;
};

bool sameLine(const ScreenRect& a, const ScreenRect& b) {
    double h = std::min({a.height(), b.height(), 40.0});
    return a.verticalOverlap(b) > 0.5 * h;
}

bool joins(const OpenBlock& block, const Leaf& next) {
    const Leaf& previous = *block.last;
    if (next.isTableRow || previous.isTableRow || next.isHeading != block.isHeading) {
        return false;
    }
    if (!previous.frame || !next.frame) {
        return !endsWithTerminalPunctuation(block.text);
    }
    const ScreenRect& a = *previous.frame;
    const ScreenRect& b = *next.frame;
    if (sameLine(a, b)) {
        return true;
    }
    double h = std::min({a.height(), b.height(), 40.0});
    return b.minY() - a.maxY() < 0.45 * h && b.minY() > a.minY();
}

// Runs of one line abut (their spaces are their own); wrapped lines are joined with a space.
void append(OpenBlock& block, const Leaf& next) {
    bool abut = block.text.empty() || TextSpace::isSpace(block.text.back()) ||
                (!next.text.empty() && TextSpace::isSpace(next.text.front())) ||
                (block.last->frame && next.frame && sameLine(*block.last->frame, *next.frame));
    if (abut) {
        block.text += next.text;
    } else {
        block.text = TextSegmenter::joinWrappedLines(block.text, next.text);
    }
}

ReadingBlock finish(OpenBlock& block, std::int64_t order) {
    ReadingBlock result;
    result.id = Uuid::random();
    result.text = std::move(block.text);
    result.role = block.isHeading ? BlockRole::heading
                                  : (block.isTableRow ? BlockRole::table : BlockRole::body);
    result.bounds = block.bounds;
    result.sourceOrder = order;
    return result;
}

} // namespace

std::vector<ReadingBlock> paragraphs(const std::vector<Leaf>& leaves, std::int64_t startOrder) {
    std::vector<ReadingBlock> blocks;
    std::optional<OpenBlock> open;
    for (const Leaf& leaf : leaves) {
        if (open && joins(*open, leaf)) {
            append(*open, leaf);
            if (leaf.frame) {
                open->bounds = open->bounds ? open->bounds->united(*leaf.frame) : *leaf.frame;
            }
            open->last = &leaf;
            continue;
        }
        if (open) {
            blocks.push_back(finish(*open, startOrder + static_cast<std::int64_t>(blocks.size())));
        }
        open = OpenBlock{leaf.text, leaf.frame, leaf.isHeading, leaf.isTableRow, &leaf};
    }
    if (open) {
        blocks.push_back(finish(*open, startOrder + static_cast<std::int64_t>(blocks.size())));
    }
    return blocks;
}

} // namespace lectorbell::LeafWalk
