#pragma once

// The ground truth of the rendered test pages, and how far a reading is from it.

#include "lectorbell/TableReading.hpp"

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace lectorbell::pages {

// Each paragraph may differ from the truth by at most this share of its characters (after
// curly quotes are straightened and white space collapsed). Recognition drops a full stop or
// misreads a bullet now and then; a wrong order or a merged paragraph costs far more.
constexpr double maxCharacterErrorRate = 0.06;

struct Expected {
    std::string role;
    std::u16string text;
};

// Where the rendered pages are (LECTORBELL_TEST_PAGES).
std::string directory();
nlohmann::json truthOf(const std::string& page);
// Curly quotes straightened, white space collapsed and trimmed.
std::u16string normalised(std::u16string_view text);
std::size_t editDistance(std::u16string_view a, std::u16string_view b);
// Edit distance of the normalised texts over the truth's length.
double errorRate(std::u16string_view got, std::u16string_view truth);
std::vector<TableRow> rowsOf(const nlohmann::json& paragraph);
// What the reading order should give, table rows spoken as sentences.
std::vector<Expected> expectedParagraphs(const nlohmann::json& truth);

} // namespace lectorbell::pages
