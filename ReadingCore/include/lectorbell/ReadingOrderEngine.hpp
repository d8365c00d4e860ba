#pragma once

#include "lectorbell/OCRRecords.hpp"
#include "lectorbell/ReadingModel.hpp"
#include "lectorbell/ScreenGeometry.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace lectorbell {

// Turns the unordered lines that text recognition finds in a screen capture into text in reading
// order (columns, paragraphs, tables, list items) and decides where reading starts for a pointer.
// Stateless; everything is in screen points and every text offset is in UTF-16 units.
namespace ReadingOrderEngine {

struct Config {
    // How far above or below a line the pointer may be, in that line's heights.
    double verticalSnapLines = 0.75;
    // How far beside a line the pointer may be, in that line's heights, but at least
    // minHorizontalSnap points.
    double horizontalSnapLines = 6.0;
    double minHorizontalSnap = 60.0;
    // Lines recognised with lower confidence are not used.
    float minConfidence = 0.3F;
    // Leave side columns (navigation, sidebars) out of reading unless reading starts in one.
    bool skipSidebars = true;
};

// A recognised line, field for field.
using Line = OCRLine;

struct Paragraph {
    std::vector<Line> lines;
    // The lines joined as wrapped text.
    std::u16string text;
    // Where each line starts in `text`, in UTF-16 units.
    std::vector<std::int64_t> lineOffsets;
    ScreenRect rect;
    BlockRole role = BlockRole::body;

    friend bool operator==(const Paragraph&, const Paragraph&) = default;
};

struct ColumnSpan {
    double minX = 0;
    double maxX = 0;

    friend bool operator==(const ColumnSpan&, const ColumnSpan&) = default;
};

struct Block {
    std::vector<Line> lines;
    ScreenRect rect;
    std::vector<Paragraph> paragraphs;
    // Present only for a table: its rows of cells, top to bottom, each left to right.
    std::optional<std::vector<std::vector<Line>>> tableRows;
    // The table's column spans, left to right; empty for other blocks.
    std::vector<ColumnSpan> tableColumns;
    // Which side column (navigation, sidebar) the block belongs to; none for the main text.
    std::optional<std::int64_t> sideColumn;

    // Median height of the block's lines (1.0 without lines).
    double lineHeight() const;

    friend bool operator==(const Block&, const Block&) = default;
};

// A line where reading could start for a pointer.
struct Candidate {
    std::int64_t pIndex = 0; // paragraph, in reading order
    std::int64_t lIndex = 0; // line within that paragraph
    double score = 0;
    double hDist = 0;
    ScreenRect rect;
};

// A reading, or the error the person is shown.
using ReadOutcome = std::variant<OCRReadingResult, ReadingError>;

ReadOutcome read(const std::vector<OCRLine>& lines, ScreenPoint pointer, const Config& config = {});
// The whole page from its first paragraph, as when no pointer is given: element precision.
ReadOutcome readAll(const std::vector<OCRLine>& lines, const Config& config = {});
std::vector<Block> layout(const std::vector<OCRLine>& lines, const Config& config = {});
std::vector<ReadingBlock> orderedBlocks(const std::vector<OCRLine>& lines,
                                        const Config& config = {});
std::vector<std::u16string> orderedParagraphTexts(const std::vector<OCRLine>& lines,
                                                  const Config& config = {});
bool isSingleColumn(const std::vector<OCRLine>& lines, const Config& config = {});
// Drops lines whose centre lies above the title bar's bottom or inside a control.
std::vector<Line> removingInterfaceText(const std::vector<OCRLine>& lines,
                                        const std::vector<ScreenRect>& controls,
                                        std::optional<double> titleBarBottom);

// The list marker a line starts with ("•", "-", "2)", "b."), if any.
std::optional<std::u16string> listMarker(std::u16string_view text);

// The layout's steps, in the order layout runs them.
std::vector<Line> cleanLines(const std::vector<OCRLine>& lines, float minConfidence);
std::vector<Line> dedupe(std::vector<Line> lines);
std::vector<Line> splitAtGutters(std::vector<Line> lines);
std::vector<Line> mergeSameRowFragments(std::vector<Line> lines);
// Moves the lines of every table out of `lines` into the returned table blocks.
std::vector<Block> detectTables(std::vector<Line>& lines);
std::vector<Block> groupIntoBlocks(std::vector<Line> lines);
// Reading order of the blocks; also marks the blocks of side columns.
std::vector<Block> xyCut(std::vector<Block> blocks);
std::vector<Paragraph> paragraphs(const Block& block);
std::vector<Paragraph> tableParagraphs(const Block& block);

} // namespace ReadingOrderEngine

} // namespace lectorbell
