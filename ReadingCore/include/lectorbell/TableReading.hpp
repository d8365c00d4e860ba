#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lectorbell {

using TableRow = std::vector<std::u16string>;

// A table as rows of cell texts, with column names when it has a header.
struct TableModel {
    std::optional<TableRow> header;
    std::vector<TableRow> rows;

    // Trims the raw cells, drops empty rows, and decides on a header: a given one is kept (and a
    // body row repeating it dropped); otherwise the first row becomes the header only when it is
    // all text with at least two filled cells and a later row holds a number.
    static TableModel infer(std::vector<TableRow> rows, std::optional<TableRow> header);

    friend bool operator==(const TableModel&, const TableModel&) = default;
};

// A table read aloud one sentence per row.
namespace TableReading {

// Cell texts that mean "no value" (exact, case-sensitive, untrimmed).
inline constexpr std::array<std::u16string_view, 7> emptyMarks{u"",    u"-",   u"\u2013", u"\u2014",
                                                               u"n/a", u"N/A", u"\u00B7"};
bool isEmptyMark(std::u16string_view cell);

// Mostly a number: has a number character, fewer than 4 letters, and numbers make up at least
// 0.4 of its characters (spaces and tabs at the ends trimmed first).
bool isNumeric(std::u16string_view cell);

// One row as a sentence; `index` is its zero-based position among the body rows. Under a header
// of two or more names, empty cells are skipped ("Ann. Age: 34."); without one they are read
// as "blank" ("Row 3: Ann, blank, Oslo."). The asymmetry is intended.
std::u16string spokenRow(const TableRow& row, const std::optional<TableRow>& header,
                         std::size_t index);

// The sentences of rows `start` and later, after a "Table with columns: …" sentence when
// `start` is 0 and the header has names.
std::vector<std::u16string> spokenRows(const TableModel& model, std::size_t start);

} // namespace TableReading

} // namespace lectorbell
