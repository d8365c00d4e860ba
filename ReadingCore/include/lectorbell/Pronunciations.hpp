#pragma once

#include "lectorbell/Uuid.hpp"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lectorbell {

// One fix of the user's pronunciation dictionary: `word` as written, `sayAs` what the voice says.
struct PronunciationRule {
    Uuid id;
    std::u16string word;
    std::u16string sayAs;

    friend bool operator==(const PronunciationRule&, const PronunciationRule&) = default;
};

// The stored form: a JSON array of {"id": UUID string, "word", "sayAs"}, all three required.
std::string encodePronunciationRules(const std::vector<PronunciationRule>& rules);
// No value when the JSON is malformed or any element lacks a key or has the wrong type;
// `whyNot` (when given) then receives a short reason that holds no rule text.
std::optional<std::vector<PronunciationRule>>
decodePronunciationRules(std::string_view json, std::string* whyNot = nullptr);

// Applies the user's fixes: whole words only (no letter or digit directly before or after),
// case-insensitive, longest word first, and among words of equal length the earlier rule first.
// Each rule rewrites the output of the ones before it.
namespace Pronunciations {

// The active list, process-wide (default empty). Setting it compiles it at once and swaps the
// compiled form in whole: a concurrent apply sees the old list or the new one, never a mix.
std::vector<PronunciationRule> rules();
void setRules(std::vector<PronunciationRule> rules);

// Applies the active list.
std::u16string apply(std::u16string_view text);
// Compiles `rules` on the spot and applies them, leaving the active list alone (for previews).
std::u16string apply(std::u16string_view text, const std::vector<PronunciationRule>& rules);

} // namespace Pronunciations

} // namespace lectorbell
