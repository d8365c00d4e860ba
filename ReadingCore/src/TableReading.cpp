#include "lectorbell/TableReading.hpp"

#include "Characters.hpp"
#include "TextTrim.hpp"

#include <algorithm>

namespace lectorbell {

namespace {

std::u16string decimal(std::size_t n) {
    std::string digits = std::to_string(n);
    return std::u16string(digits.begin(), digits.end());
}

std::u16string joined(const std::vector<std::u16string>& parts, std::u16string_view separator) {
    std::u16string out;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (i > 0) {
            out.append(separator);
        }
        out.append(parts[i]);
    }
    return out;
}

bool anyNumeric(TableRow::const_iterator first, TableRow::const_iterator last) {
    return std::any_of(first, last,
                       [](const std::u16string& c) { return TableReading::isNumeric(c); });
}

bool isBlankRow(const TableRow& row) {
    return std::all_of(row.begin(), row.end(), [](const std::u16string& c) { return c.empty(); });
}

// Under a header of two or more names: "Ann. Age: 34." with empty cells skipped.
std::u16string spokenUnderHeader(const TableRow& row, const TableRow& header, std::size_t index) {
    std::optional<std::u16string> label;
    if (!row.empty() && !TableReading::isEmptyMark(row[0])) {
        label = row[0];
    }
    std::vector<std::u16string> parts;
    for (std::size_t i = 1; i < row.size(); ++i) {
        if (TableReading::isEmptyMark(row[i])) {
            continue;
        }
        std::u16string_view name = i < header.size() ? std::u16string_view{header[i]} : u"";
        if (!name.empty() && !TableReading::isEmptyMark(name)) {
            parts.push_back(std::u16string{name} + u": " + row[i]);
        } else {
            parts.push_back(row[i]);
        }
    }
    std::u16string lead;
    if (label) {
        if (TableReading::isNumeric(*label) && !header[0].empty()) {
            lead = header[0] + u" " + *label;
        } else if (parts.empty()) {
            return *label + u".";
        } else {
            lead = *label;
        }
    } else {
        lead = u"Row " + decimal(index + 1);
    }
    // ". " and "." even with no parts (a lone numeric label, a row of empty cells): kept as is.
    return lead + u". " + joined(parts, u", ") + u".";
}

// Without a usable header: "Row 3: Ann, blank, Oslo." with empty cells read as "blank".
std::u16string spokenWithoutHeader(const TableRow& row, std::size_t index) {
    std::vector<std::u16string> cells;
    cells.reserve(row.size());
    for (const std::u16string& cell : row) {
        cells.push_back(TableReading::isEmptyMark(cell) ? u"blank" : cell);
    }
    return u"Row " + decimal(index + 1) + u": " + joined(cells, u", ") + u".";
}

} // namespace

TableModel TableModel::infer(std::vector<TableRow> rows, std::optional<TableRow> header) {
    for (TableRow& row : rows) {
        for (std::u16string& cell : row) {
            cell = std::u16string{detail::trimWhitespace(cell)};
        }
    }
    std::erase_if(rows, isBlankRow);

    if (header && !header->empty()) {
        if (!rows.empty() && rows.front() == *header) {
            rows.erase(rows.begin());
        }
        return TableModel{std::move(header), std::move(rows)};
    }
    if (rows.size() < 2) {
        return TableModel{std::nullopt, std::move(rows)};
    }
    const TableRow& first = rows.front();
    bool laterNumeric = std::any_of(rows.begin() + 1, rows.end(), [](const TableRow& row) {
        return anyNumeric(row.begin(), row.end());
    });
    if (!laterNumeric || anyNumeric(first.begin(), first.end())) {
        return TableModel{std::nullopt, std::move(rows)};
    }
    auto filled = std::count_if(first.begin(), first.end(),
                                [](const std::u16string& c) { return !c.empty(); });
    if (filled < 2) {
        return TableModel{std::nullopt, std::move(rows)};
    }
    TableRow names = std::move(rows.front());
    rows.erase(rows.begin());
    return TableModel{std::move(names), std::move(rows)};
}

namespace TableReading {

bool isEmptyMark(std::u16string_view cell) {
    return std::find(emptyMarks.begin(), emptyMarks.end(), cell) != emptyMarks.end();
}

bool isNumeric(std::u16string_view cell) {
    std::u16string_view trimmed = detail::trimSpacesAndTabs(cell);
    if (trimmed.empty()) {
        return false;
    }
    std::size_t characters = 0;
    std::size_t numbers = 0;
    std::size_t letters = 0;
    detail::forEachCharacter(trimmed, [&](std::u16string_view character, std::size_t) {
        char32_t first = detail::firstScalar(character);
        ++characters;
        numbers += detail::isNumberScalar(first) ? 1 : 0;
        letters += detail::isLetterScalar(first) ? 1 : 0;
        return true;
    });
    // numbers / characters >= 0.4, in integers.
    return numbers > 0 && letters < 4 && numbers * 5 >= characters * 2;
}

std::u16string spokenRow(const TableRow& row, const std::optional<TableRow>& header,
                         std::size_t index) {
    if (header && header->size() >= 2) {
        return spokenUnderHeader(row, *header, index);
    }
    return spokenWithoutHeader(row, index);
}

std::vector<std::u16string> spokenRows(const TableModel& model, std::size_t start) {
    std::vector<std::u16string> sentences;
    if (start == 0 && model.header) {
        std::vector<std::u16string> names;
        std::copy_if(model.header->begin(), model.header->end(), std::back_inserter(names),
                     [](const std::u16string& name) { return !isEmptyMark(name); });
        if (!names.empty()) {
            sentences.push_back(u"Table with columns: " + joined(names, u", ") + u".");
        }
    }
    for (std::size_t i = start; i < model.rows.size(); ++i) {
        sentences.push_back(spokenRow(model.rows[i], model.header, i));
    }
    return sentences;
}

} // namespace TableReading

} // namespace lectorbell
