#include "lectorbell/TableReading.hpp"
#include "sources/AXVocabulary.hpp"
#include "sources/Leaves.hpp"
#include "sources/TreeQueries.hpp"

namespace lectorbell::LeafWalk {

namespace {

// A cell's text: its own value, else the static text inside it.
std::u16string cellText(const ElementRef& cell, WalkBudget& budget, const WalkContext& context) {
    AXAnswer<std::u16string> value = cell->value();
    if (value && !value->empty()) {
        budget.spend(static_cast<std::int64_t>(value->size()), context.now());
        return *value;
    }
    std::vector<Leaf> inner;
    collect(cell, inner, budget, {false, true, false}, context);
    std::u16string text;
    for (const Leaf& leaf : inner) {
        if (!text.empty()) {
            text += u' ';
        }
        text += leaf.text;
    }
    return text;
}

ElementRef tableOf(const ElementRef& rowOrTable) {
    for (const ElementRef& element : TreeQueries::ancestors(rowOrTable, 4)) {
        if (AXVocabulary::contains(AXVocabulary::tableRoles, element->role().optional())) {
            return element;
        }
    }
    return nullptr;
}

TableRow trimmed(const TableRow& row) {
    // The same trimming infer applies, so rows can be matched before and after it.
    TableModel single = TableModel::infer({row}, std::nullopt);
    return single.rows.empty() ? TableRow{} : single.rows.front();
}

} // namespace

std::vector<Leaf> tableLeaves(const ElementRef& rowOrTable, WalkBudget& budget,
                              const WalkContext& context) {
    ElementRef table = tableOf(rowOrTable);
    if (!table) {
        return {};
    }
    AXAnswer<std::vector<ElementRef>> rowElements = table->rows();
    if (!rowElements) {
        return {};
    }
    bool fromRow = !rowOrTable->isSame(*table);
    std::vector<TableRow> rows;
    std::optional<std::size_t> pointedIndex;
    for (const ElementRef& rowElement : *rowElements) {
        if (context.cancelled() || !budget.spend(0, context.now())) {
            break;
        }
        if (fromRow && !pointedIndex && rowElement->isSame(*rowOrTable)) {
            pointedIndex = rows.size();
        }
        TableRow row;
        if (AXAnswer<std::vector<ElementRef>> cells = rowElement->cells()) {
            for (const ElementRef& cell : *cells) {
                row.push_back(cellText(cell, budget, context));
            }
        }
        rows.push_back(std::move(row));
    }
    std::optional<TableRow> header;
    if (AXAnswer<std::vector<ElementRef>> headers = table->columnHeaders();
        headers && !headers->empty()) {
        TableRow names;
        for (const ElementRef& cell : *headers) {
            names.push_back(cellText(cell, budget, context));
        }
        header = names;
    }
    TableModel model = TableModel::infer(rows, header);
    std::size_t start = 0;
    if (pointedIndex) {
        // The pointed row's place among the body rows that infer kept.
        for (std::size_t i = 0; i < *pointedIndex; ++i) {
            TableRow row = trimmed(rows[i]);
            if (row.empty() || (model.header && row == *model.header)) {
                continue;
            }
            ++start;
        }
        start = std::min(start, model.rows.size());
    }
    std::optional<ScreenRect> frame = table->frame().optional();
    std::vector<Leaf> leaves;
    for (std::u16string& line : TableReading::spokenRows(model, start)) {
        leaves.push_back(Leaf{table, std::move(line), frame, false, true});
    }
    return leaves;
}

} // namespace lectorbell::LeafWalk
