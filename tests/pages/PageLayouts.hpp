#pragma once

// The test pages: screen-like layouts of known text, written in reading order. Each paragraph's
// `role` is the role the reading order must give it.

#include <QString>
#include <QStringList>
#include <vector>

namespace lectorbell::pages {

struct TableColumn {
    double x = 0;
    double width = 0;
    bool rightAligned = false;
};

struct Item {
    QString role;
    QString text;
    // Left edge and wrapping width, in points.
    double x = 0;
    double width = 0;
    // Top of the item; negative to follow the previous item of the same flow with `gapBefore`.
    double top = -1;
    // Items of one flow (a column) follow each other down the page.
    int flow = 0;
    double gapBefore = 14;
    int pixelSize = 15;
    bool bold = false;
    // Words first..last (zero-based) drawn on the selection colour; -1 for none.
    int selectFrom = -1;
    int selectTo = -1;
    // A table instead of text: rows of cells, the first row a bold header.
    std::vector<QStringList> rows;
    std::vector<TableColumn> columns;
};

struct Page {
    QString name;
    int width = 1000;
    int height = 700;
    std::vector<Item> items;
    // The highlighted text as it should be read, when the page has a highlight.
    QString selection;
};

std::vector<Page> testPages();
// Pages only timed by the recognition benchmark: a 1280 × 200 band and a 1280 × 800 window.
std::vector<Page> benchmarkPages();

} // namespace lectorbell::pages
