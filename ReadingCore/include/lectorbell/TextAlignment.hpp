#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lectorbell::TextAlignment {

// One word of a text: normalised, with the UTF-16 offset of its start in that text.
struct Token {
    std::u16string word;
    std::int64_t offset = 0;

    friend bool operator==(const Token&, const Token&) = default;
};

// Where a short run of words (recognised on screen around the pointer) starts in a longer text
// (from the accessibility interface): the UTF-16 offset of the run's first word when exactly one
// place matches. Near the end of the text fewer words are compared, never fewer than
// `minimumWords` (at least 1). A missing or repeated run gives no value, so an ambiguous phrase
// never moves the start to the wrong place.
std::optional<std::int64_t> offset(const std::vector<std::u16string>& words,
                                   std::u16string_view text, int minimumWords);

// Lower case, keeping only letters, marks and digits: "Don't" becomes "dont".
std::u16string normalize(std::u16string_view word);

// The words of the text by ICU's word segmentation, normalised; words that normalise to nothing
// are left out.
std::vector<Token> tokenize(std::u16string_view text);

} // namespace lectorbell::TextAlignment
