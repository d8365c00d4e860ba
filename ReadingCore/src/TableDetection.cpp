#include "LayoutGeometry.hpp"
#include "lectorbell/ReadingOrderEngine.hpp"
#include "lectorbell/TableReading.hpp"
#include "lectorbell/TextSegmenter.hpp"

#include <algorithm>
#include <numeric>

// Tables are found as runs of rows whose cells line up in columns. A cell lines up with a
// column when it overlaps the column's span or shares its left or right edge within a line
// height (text columns align left, number columns right); every cell of a row must take a
// different column, in order. A row needs two cells; a run ends at a row that does not line up,
// at a one-cell row, or at a vertical gap of more than 2.5 line heights (of its first row).
namespace lectorbell::ReadingOrderEngine {

namespace {

using detail::unionOf;

struct Row {
    std::vector<std::size_t> cells; // indices into the lines, left to right
    double top = 0;
    double bottom = 0;
};

struct Run {
    std::vector<const Row*> rows;
    std::vector<ColumnSpan> columns;
};

bool shareRow(const Line& a, const Line& b) {
    return a.rect.verticalOverlap(b.rect) > 0.5 * std::min(a.rect.height(), b.rect.height());
}

// Rows of lines sharing a row, top to bottom. A line joins the latest of the last few rows
// whose first line it shares a row with.
std::vector<Row> rowsOf(const std::vector<Line>& lines) {
    std::vector<std::size_t> order(lines.size());
    std::iota(order.begin(), order.end(), 0);
    std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return detail::topThenLeft(lines[a].rect, lines[b].rect);
    });
    std::vector<Row> rows;
    constexpr std::size_t lookBack = 3;
    for (std::size_t index : order) {
        Row* joined = nullptr;
        for (std::size_t k = rows.size(); k > 0 && k + lookBack > rows.size(); --k) {
            if (shareRow(lines[rows[k - 1].cells.front()], lines[index])) {
                joined = &rows[k - 1];
                break;
            }
        }
        if (joined == nullptr) {
            rows.push_back({{index}, lines[index].rect.minY(), lines[index].rect.maxY()});
            continue;
        }
        joined->cells.push_back(index);
        joined->top = std::min(joined->top, lines[index].rect.minY());
        joined->bottom = std::max(joined->bottom, lines[index].rect.maxY());
    }
    for (Row& row : rows) {
        std::sort(row.cells.begin(), row.cells.end(), [&](std::size_t a, std::size_t b) {
            return lines[a].rect.minX() < lines[b].rect.minX();
        });
    }
    return rows;
}

// Cells side by side, none overlapping the next.
bool isTableRow(const Row& row, const std::vector<Line>& lines) {
    if (row.cells.size() < 2) {
        return false;
    }
    for (std::size_t i = 1; i < row.cells.size(); ++i) {
        if (lines[row.cells[i]].rect.minX() < lines[row.cells[i - 1]].rect.maxX()) {
            return false;
        }
    }
    return true;
}

bool alignsWith(const ScreenRect& cell, const ColumnSpan& column, double h) {
    bool overlaps = std::min(cell.maxX(), column.maxX) > std::max(cell.minX(), column.minX);
    return overlaps || std::abs(cell.minX() - column.minX) <= h ||
           std::abs(cell.maxX() - column.maxX) <= h;
}

// The column each cell takes, or nothing when the row does not line up with the columns.
std::optional<std::vector<std::size_t>> columnsOfRow(const Row& row, const std::vector<Line>& lines,
                                                     const std::vector<ColumnSpan>& columns) {
    std::vector<std::size_t> taken;
    std::size_t next = 0;
    for (std::size_t cell : row.cells) {
        const ScreenRect& rect = lines[cell].rect;
        const double h = detail::usableHeight(rect);
        std::vector<std::size_t> matches;
        for (std::size_t c = 0; c < columns.size(); ++c) {
            if (alignsWith(rect, columns[c], h)) {
                matches.push_back(c);
            }
        }
        if (matches.size() != 1 || matches.front() < next) {
            return std::nullopt;
        }
        taken.push_back(matches.front());
        next = matches.front() + 1;
    }
    return taken;
}

// The line height of a run is that of its first row: measuring every row again for each new
// one would make long runs of side-by-side prose quadratic.
double runLineHeight(const Run& run, const std::vector<Line>& lines) {
    std::vector<double> heights;
    for (std::size_t cell : run.rows.front()->cells) {
        heights.push_back(lines[cell].rect.height());
    }
    return median(std::move(heights));
}

// Enough numbers, or enough short cells, to be a table rather than columns of prose.
bool looksLikeTable(const Run& run, const std::vector<Line>& lines) {
    if (run.rows.size() < 2) {
        return false;
    }
    std::size_t cells = 0;
    std::size_t numeric = 0;
    std::vector<double> lengths;
    for (const Row* row : run.rows) {
        for (std::size_t cell : row->cells) {
            ++cells;
            numeric += TableReading::isNumeric(lines[cell].text) ? 1 : 0;
            lengths.push_back(static_cast<double>(lines[cell].text.size()));
        }
    }
    return numeric * 4 >= cells || (run.rows.size() >= 3 && median(std::move(lengths)) <= 20);
}

Block tableBlock(const Run& run, const std::vector<Line>& lines) {
    Block block;
    std::vector<std::vector<Line>> rows;
    for (const Row* row : run.rows) {
        std::vector<Line>& cells = rows.emplace_back();
        for (std::size_t cell : row->cells) {
            cells.push_back(lines[cell]);
            block.lines.push_back(lines[cell]);
        }
    }
    block.rect = unionOf(block.lines);
    block.tableRows = std::move(rows);
    block.tableColumns = run.columns;
    return block;
}

} // namespace

std::vector<Block> detectTables(std::vector<Line>& lines) {
    const std::vector<Row> rows = rowsOf(lines);
    std::vector<Block> tables;
    std::vector<bool> inTable(lines.size(), false);
    Run run;
    auto closeRun = [&] {
        if (looksLikeTable(run, lines)) {
            for (const Row* row : run.rows) {
                for (std::size_t cell : row->cells) {
                    inTable[cell] = true;
                }
            }
            tables.push_back(tableBlock(run, lines));
        }
        run = {};
    };
    auto startRun = [&](const Row& row) {
        run.rows = {&row};
        for (std::size_t cell : row.cells) {
            run.columns.push_back({lines[cell].rect.minX(), lines[cell].rect.maxX()});
        }
    };
    for (const Row& row : rows) {
        if (!isTableRow(row, lines)) {
            closeRun();
            continue;
        }
        if (run.rows.empty()) {
            startRun(row);
            continue;
        }
        const double gap = row.top - run.rows.back()->bottom;
        std::optional<std::vector<std::size_t>> taken;
        if (gap <= 2.5 * runLineHeight(run, lines)) {
            taken = columnsOfRow(row, lines, run.columns);
        }
        if (!taken) {
            closeRun();
            startRun(row);
            continue;
        }
        run.rows.push_back(&row);
        for (std::size_t k = 0; k < row.cells.size(); ++k) {
            ColumnSpan& column = run.columns[(*taken)[k]];
            column.minX = std::min(column.minX, lines[row.cells[k]].rect.minX());
            column.maxX = std::max(column.maxX, lines[row.cells[k]].rect.maxX());
        }
    }
    closeRun();

    std::vector<Line> rest;
    rest.reserve(lines.size());
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (!inTable[i]) {
            rest.push_back(std::move(lines[i]));
        }
    }
    lines = std::move(rest);
    return tables;
}

// One paragraph per spoken sentence of the table; each holds the lines of the row it speaks,
// all starting at offset 0, since a row is read as a whole.
std::vector<Paragraph> tableParagraphs(const Block& block) {
    if (!block.tableRows || block.tableRows->empty()) {
        return {};
    }
    const auto& rows = *block.tableRows;
    std::vector<TableRow> cells;
    for (const auto& row : rows) {
        TableRow& texts = cells.emplace_back(block.tableColumns.size());
        for (const Line& cell : row) {
            auto column = std::find_if(
                block.tableColumns.begin(), block.tableColumns.end(), [&](const ColumnSpan& span) {
                    return cell.rect.midX() >= span.minX && cell.rect.midX() <= span.maxX;
                });
            auto k = static_cast<std::size_t>(column - block.tableColumns.begin());
            if (k >= texts.size()) {
                texts.emplace_back();
            }
            texts[k] = texts[k].empty() ? cell.text : texts[k] + u' ' + cell.text;
        }
    }
    TableModel model = TableModel::infer(std::move(cells), std::nullopt);
    std::vector<Paragraph> paragraphs;
    std::size_t rowIndex = 0;
    for (std::u16string& sentence : TableReading::spokenRows(model, 0)) {
        const std::vector<Line>& rowLines = rows[std::min(rowIndex, rows.size() - 1)];
        ++rowIndex;
        Paragraph paragraph;
        paragraph.text = std::move(sentence);
        paragraph.lines = rowLines;
        paragraph.lineOffsets.assign(rowLines.size(), 0);
        paragraph.rect = unionOf(rowLines);
        paragraph.role = BlockRole::table;
        paragraphs.push_back(std::move(paragraph));
    }
    return paragraphs;
}

} // namespace lectorbell::ReadingOrderEngine
