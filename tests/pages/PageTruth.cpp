#include "PageTruth.hpp"

#include "lectorbell/Utf8.hpp"

#include <algorithm>
#include <cstdlib>
#include <fstream>

namespace lectorbell::pages {

using nlohmann::json;

std::string directory() {
    const char* dir = std::getenv("LECTORBELL_TEST_PAGES");
    return dir != nullptr ? dir : "";
}

json truthOf(const std::string& page) {
    std::ifstream in{directory() + "/" + page + ".truth.json"};
    return json::parse(in);
}

std::u16string normalised(std::u16string_view text) {
    std::u16string out;
    for (char16_t c : text) {
        if (c == u'\u2019' || c == u'\u2018') {
            c = u'\'';
        } else if (c == u'\u201C' || c == u'\u201D') {
            c = u'"';
        }
        bool space = c == u' ' || c == u'\n' || c == u'\t';
        if (space) {
            if (!out.empty() && out.back() != u' ') {
                out += u' ';
            }
        } else {
            out += c;
        }
    }
    while (!out.empty() && out.back() == u' ') {
        out.pop_back();
    }
    return out;
}

std::size_t editDistance(std::u16string_view a, std::u16string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j) {
        row[j] = j;
    }
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            std::size_t above = row[j];
            row[j] =
                std::min({row[j] + 1, row[j - 1] + 1, diagonal + (a[i - 1] == b[j - 1] ? 0 : 1)});
            diagonal = above;
        }
    }
    return row[b.size()];
}

double errorRate(std::u16string_view got, std::u16string_view truth) {
    const std::u16string g = normalised(got);
    const std::u16string t = normalised(truth);
    return static_cast<double>(editDistance(g, t)) /
           static_cast<double>(std::max<std::size_t>(t.size(), 1));
}

std::vector<TableRow> rowsOf(const json& paragraph) {
    std::vector<TableRow> rows;
    for (const json& row : paragraph["rows"]) {
        TableRow& cells = rows.emplace_back();
        for (const json& cell : row) {
            cells.push_back(decodeUtf8(cell.get<std::string>()).text);
        }
    }
    return rows;
}

// What the reading order should give, table rows spoken as sentences.
std::vector<Expected> expectedParagraphs(const json& truth) {
    std::vector<Expected> expected;
    for (const json& paragraph : truth["paragraphs"]) {
        const std::string role = paragraph["role"];
        if (paragraph.contains("rows")) {
            TableModel model = TableModel::infer(rowsOf(paragraph), std::nullopt);
            for (std::u16string& sentence : TableReading::spokenRows(model, 0)) {
                expected.push_back({role, std::move(sentence)});
            }
        } else {
            expected.push_back({role, decodeUtf8(paragraph["text"].get<std::string>()).text});
        }
    }
    return expected;
}

} // namespace lectorbell::pages
