#include "LayoutGeometry.hpp"
#include "lectorbell/ReadingOrderEngine.hpp"
#include "lectorbell/TextSegmenter.hpp"

#include <algorithm>
#include <map>

namespace lectorbell::ReadingOrderEngine {

namespace {

bool isShortLabel(const Paragraph& paragraph) {
    return paragraph.lines.size() == 1 && paragraph.role != BlockRole::body;
}

// A side column whose paragraphs are all one-line labels is navigation; one with running text
// is a sidebar.
void nameSideColumns(std::vector<Block>& blocks) {
    std::map<std::int64_t, bool> allLabels;
    for (const Block& block : blocks) {
        if (!block.sideColumn) {
            continue;
        }
        auto [entry, added] = allLabels.try_emplace(*block.sideColumn, true);
        entry->second = entry->second &&
                        std::all_of(block.paragraphs.begin(), block.paragraphs.end(), isShortLabel);
    }
    for (Block& block : blocks) {
        if (!block.sideColumn) {
            continue;
        }
        BlockRole role = allLabels[*block.sideColumn] ? BlockRole::navigation : BlockRole::sidebar;
        for (Paragraph& paragraph : block.paragraphs) {
            paragraph.role = role;
        }
    }
}

// The page's first heading is its title when set in larger type than the page's running text
// (table cells, whose recognised boxes vary most, are left out of that measure).
void markTitle(std::vector<Block>& blocks) {
    std::vector<double> heights;
    for (const Block& block : blocks) {
        for (const Line& line : block.lines) {
            if (!block.tableRows) {
                heights.push_back(line.rect.height());
            }
        }
    }
    const double typical = median(std::move(heights));
    for (Block& block : blocks) {
        if (block.sideColumn || block.paragraphs.empty()) {
            continue;
        }
        Paragraph& first = block.paragraphs.front();
        std::vector<double> own;
        for (const Line& line : first.lines) {
            own.push_back(line.rect.height());
        }
        if (first.role == BlockRole::heading && median(std::move(own)) >= 1.25 * typical) {
            first.role = BlockRole::title;
        }
        return;
    }
}

template <class Visit>
void forEachReadParagraph(const std::vector<Block>& blocks, const Config& config, Visit visit) {
    for (const Block& block : blocks) {
        if (config.skipSidebars && block.sideColumn) {
            continue;
        }
        for (const Paragraph& paragraph : block.paragraphs) {
            visit(paragraph);
        }
    }
}

} // namespace

std::vector<Block> layout(const std::vector<OCRLine>& input, const Config& config) {
    std::vector<Line> lines = cleanLines(input, config.minConfidence);
    lines = dedupe(std::move(lines));
    lines = splitAtGutters(std::move(lines));
    lines = mergeSameRowFragments(std::move(lines));
    std::vector<Block> tables = detectTables(lines);
    std::vector<Block> blocks = groupIntoBlocks(std::move(lines));
    std::move(tables.begin(), tables.end(), std::back_inserter(blocks));
    blocks = xyCut(std::move(blocks));
    for (Block& block : blocks) {
        block.paragraphs = block.tableRows ? tableParagraphs(block) : paragraphs(block);
    }
    nameSideColumns(blocks);
    markTitle(blocks);
    return blocks;
}

std::vector<ReadingBlock> orderedBlocks(const std::vector<OCRLine>& lines, const Config& config) {
    std::vector<ReadingBlock> result;
    forEachReadParagraph(layout(lines, config), config, [&](const Paragraph& paragraph) {
        result.push_back({Uuid::random(), paragraph.text, paragraph.role, paragraph.rect,
                          static_cast<std::int64_t>(result.size())});
    });
    return result;
}

std::vector<std::u16string> orderedParagraphTexts(const std::vector<OCRLine>& lines,
                                                  const Config& config) {
    std::vector<std::u16string> result;
    forEachReadParagraph(layout(lines, config), config,
                         [&](const Paragraph& paragraph) { result.push_back(paragraph.text); });
    return result;
}

bool isSingleColumn(const std::vector<OCRLine>& lines, const Config& config) {
    std::vector<Block> blocks = layout(lines, config);
    if (blocks.empty() || std::any_of(blocks.begin(), blocks.end(),
                                      [](const Block& b) { return b.tableRows.has_value(); })) {
        return false;
    }
    if (blocks.size() == 1) {
        return true;
    }
    auto widest =
        std::max_element(blocks.begin(), blocks.end(), [](const Block& a, const Block& b) {
            return a.rect.width() < b.rect.width();
        });
    return std::all_of(blocks.begin(), blocks.end(), [&](const Block& block) {
        return &block == &*widest || block.rect.horizontalOverlap(widest->rect) > 0;
    });
}

std::vector<Line> removingInterfaceText(const std::vector<OCRLine>& lines,
                                        const std::vector<ScreenRect>& controls,
                                        std::optional<double> titleBarBottom) {
    std::vector<Line> kept;
    for (const OCRLine& line : lines) {
        const ScreenPoint centre{line.rect.midX(), line.rect.midY()};
        if (titleBarBottom && centre.y < *titleBarBottom) {
            continue;
        }
        if (std::any_of(controls.begin(), controls.end(),
                        [&](const ScreenRect& control) { return control.contains(centre); })) {
            continue;
        }
        kept.push_back(line);
    }
    return kept;
}

} // namespace lectorbell::ReadingOrderEngine
