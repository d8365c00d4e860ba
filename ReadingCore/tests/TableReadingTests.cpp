#include "lectorbell/TableReading.hpp"

#include <gtest/gtest.h>

namespace {

using lectorbell::TableModel;
using lectorbell::TableRow;
namespace TableReading = lectorbell::TableReading;

TEST(TableReadingIsNumeric, JudgesByNumberShareAndLetters) {
    const std::pair<std::u16string, bool> cases[] = {
        {u"42", true},
        {u"3.5%", true},
        {u"$1,200", true},
        {u"12 kg", true},
        {u"A1", true},
        {u" \t7\t", true},
        {u"abc1", false},
        {u"Q1 2024 results", false},
        {u"", false},
        {u" \t", false},
        {u"n/a", false},
        {u"\n\n\n5", false},
        {u"\u0661\u0662", true},
        {u"1 of 3", false},
    };
    for (const auto& [cell, numeric] : cases) {
        EXPECT_EQ(TableReading::isNumeric(cell), numeric) << cell.size();
    }
}

TEST(TableModelInfer, DecidesOnAHeader) {
    struct Case {
        std::vector<TableRow> rows;
        std::optional<TableRow> header;
        TableModel expected;
    };
    const Case cases[] = {
        {{{u"Name", u"Age"}, {u"Ann", u"34"}},
         std::nullopt,
         {TableRow{u"Name", u"Age"}, {{u"Ann", u"34"}}}},
        {{{u"Name", u"Age"}, {u"Ann", u"Bob"}},
         std::nullopt,
         {std::nullopt, {{u"Name", u"Age"}, {u"Ann", u"Bob"}}}},
        // A first row with a number is data.
        {{{u"2020", u"Age"}, {u"Ann", u"34"}},
         std::nullopt,
         {std::nullopt, {{u"2020", u"Age"}, {u"Ann", u"34"}}}},
        // One filled cell is not enough for a header.
        {{{u"Name", u""}, {u"Ann", u"34"}},
         std::nullopt,
         {std::nullopt, {{u"Name", u""}, {u"Ann", u"34"}}}},
        // Cells are trimmed and blank rows dropped before deciding.
        {{{u" Name\n", u"\tAge "}, {u" ", u""}, {}, {u"Ann", u" 34 "}},
         std::nullopt,
         {TableRow{u"Name", u"Age"}, {{u"Ann", u"34"}}}},
        {{{u"only"}}, std::nullopt, {std::nullopt, {{u"only"}}}},
        // A given header is kept, and a body row repeating it dropped.
        {{{u"A", u"B"}, {u"1", u"2"}},
         TableRow{u"A", u"B"},
         {TableRow{u"A", u"B"}, {{u"1", u"2"}}}},
        {{{u""}}, TableRow{u"A", u"B"}, {TableRow{u"A", u"B"}, {}}},
        // An empty header counts as none.
        {{{u"x", u"y"}}, TableRow{}, {std::nullopt, {{u"x", u"y"}}}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(TableModel::infer(c.rows, c.header), c.expected);
    }
}

TEST(TableReadingSpokenRow, ReadsRowsAsSentences) {
    const TableRow people{u"Name", u"Age", u"City"};
    const TableRow years{u"Year", u"Sales"};
    struct Case {
        TableRow row;
        std::optional<TableRow> header;
        std::size_t index;
        std::u16string expected;
    };
    const Case cases[] = {
        {{u"Ann", u"34", u"\u2013"}, people, 0, u"Ann. Age: 34."},
        {{u"", u"34", u"Oslo"}, people, 0, u"Row 1. Age: 34, City: Oslo."},
        {{u"Ann", u"", u""}, people, 4, u"Ann."},
        {{u"2021", u"5"}, years, 0, u"Year 2021. Sales: 5."},
        // Kept on purpose: ". " and "." even with nothing between.
        {{u"2021"}, years, 0, u"Year 2021. ."},
        {{u"-", u"n/a"}, years, 1, u"Row 2. ."},
        // More cells than names: the extra ones are read bare.
        {{u"Ann", u"34", u"Oslo", u"extra"}, people, 0, u"Ann. Age: 34, City: Oslo, extra."},
        {{u"Ann", u"34"}, TableRow{u"Name", u"N/A"}, 0, u"Ann. 34."},
        // No header, or one name only: empty cells are "blank".
        {{u"Ann", u"", u"Oslo"}, std::nullopt, 2, u"Row 3: Ann, blank, Oslo."},
        {{u"Ann", u"\u00B7"}, TableRow{u"Name"}, 0, u"Row 1: Ann, blank."},
        {{}, std::nullopt, 0, u"Row 1: ."},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(TableReading::spokenRow(c.row, c.header, c.index), c.expected);
    }
}

TEST(TableReadingSpokenRows, StartsWithTheColumnsOnlyFromTheTop) {
    TableModel model{TableRow{u"Name", u"n/a", u"Age"},
                     {{u"Ann", u"x", u"34"}, {u"Bob", u"y", u"5"}}};
    auto fromTop = TableReading::spokenRows(model, 0);
    ASSERT_EQ(fromTop.size(), 3u);
    EXPECT_EQ(fromTop[0], u"Table with columns: Name, Age.");
    EXPECT_EQ(fromTop[1], u"Ann. x, Age: 34.");
    auto fromSecond = TableReading::spokenRows(model, 1);
    ASSERT_EQ(fromSecond.size(), 1u);
    EXPECT_EQ(fromSecond[0], u"Bob. y, Age: 5.");
    EXPECT_TRUE(TableReading::spokenRows(model, 9).empty());

    TableModel unnamed{TableRow{u"-", u""}, {}};
    EXPECT_TRUE(TableReading::spokenRows(unnamed, 0).empty());
}

} // namespace
