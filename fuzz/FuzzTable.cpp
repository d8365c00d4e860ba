// Input: rows separated by line feeds, cells by tabs; the first unit chooses whether the first
// row is given as the header and from which row the table is read.

#include "FuzzInput.hpp"
#include "lectorbell/TableReading.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace lectorbell;
    std::u16string text = fuzz::unitsOf(data, size);
    if (text.empty()) {
        return 0;
    }
    char16_t choice = text[0];
    std::vector<TableRow> rows;
    for (const std::u16string& line : fuzz::split(std::u16string_view{text}.substr(1), u'\n')) {
        rows.push_back(fuzz::split(line, u'\t'));
    }
    std::optional<TableRow> header;
    if ((choice & 1) != 0 && !rows.empty()) {
        header = rows.front();
        rows.erase(rows.begin());
    }
    TableModel model = TableModel::infer(std::move(rows), std::move(header));
    TableReading::spokenRows(model, (choice >> 1) % (model.rows.size() + 2));
    return 0;
}
