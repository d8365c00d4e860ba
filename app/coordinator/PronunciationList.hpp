#pragma once

#include "lectorbell/Pronunciations.hpp"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Editing the user's own pronunciation fixes: one at a time or by importing a list.
namespace lectorbell::coordinator::PronunciationList {

// Beyond this many fixes every reading would wait for the rules to apply.
inline constexpr std::size_t mostRules = 5000;
inline constexpr std::size_t longestWord = 100;
inline constexpr std::size_t longestSayAs = 500;

// Why the rule cannot be used, or none when it can.
std::optional<std::string> whyRefused(const PronunciationRule& rule);

enum class Placement { added, replaced };
// A rule for a word the list already has (ignoring case and the spaces around it) takes that
// rule's place; any other rule is added at the end.
Placement put(std::vector<PronunciationRule>& list, PronunciationRule rule);
// Removes the rules for the word; how many there were.
std::size_t remove(std::vector<PronunciationRule>& list, std::u16string_view word);

struct Refusal {
    // 1-based position in the imported list.
    std::size_t index = 0;
    std::string reason;
};

struct ImportReport {
    std::size_t added = 0;
    std::size_t replaced = 0;
    std::vector<Refusal> refused;
    // New words left out because the list was full, and the position of the first of them.
    std::size_t refusedAsFull = 0;
    std::size_t firstRefusedAsFull = 0;
};

// Puts every usable rule of a JSON array of {"word", "sayAs"} (an "id" is kept when it is a
// UUID) into the list. No value when the text is not a JSON array; `whyNot` then says so.
std::optional<ImportReport> import(std::vector<PronunciationRule>& list, std::string_view json,
                                   std::string* whyNot = nullptr);

} // namespace lectorbell::coordinator::PronunciationList
