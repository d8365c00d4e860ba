#pragma once

// The compiled form of a pronunciation list. Internal to ReadingCore.
//
// Each rule means the pattern (?<![\p{L}\p{N}])<word, escaped>(?![\p{L}\p{N}]) with the
// case-insensitive option, applied in list order, each to the output of the one before. Compiling
// that pattern costs about 1.7 ms and 16 KB per rule in ICU (the case-closed letter set is rebuilt
// each time), and scanning every text with 5,000 of them costs milliseconds per chunk. So:
// - each rule compiles only its escaped word, case-insensitively, in ICU (microseconds, 1 KB);
// - the look-around test uses one shared case-closed [\p{L}\p{N}] set, as ICU itself would;
// - before any matching, an index of case-folded word prefixes picks the few rules whose folded
//   word occurs in the folded text (a necessary condition for a match), and only those run, in
//   list order; after a rule changes the text, the later rules are picked again from the new text.
// The result is the same as running every pattern in turn.

#include "lectorbell/Pronunciations.hpp"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unicode/regex.h>
#include <unicode/unistr.h>
#include <unordered_map>
#include <vector>

namespace lectorbell::detail {

class CompiledPronunciations {
public:
    CompiledPronunciations() = default;
    explicit CompiledPronunciations(const std::vector<PronunciationRule>& rules);

    std::u16string apply(std::u16string_view text) const;
    std::size_t size() const { return entries_.size(); }

private:
    struct Entry {
        std::unique_ptr<const icu::RegexPattern> word;
        icu::UnicodeString sayAs;
    };
    // One distinct case-folded word and the entries (ascending) that look for it.
    struct FoldedWord {
        icu::UnicodeString folded;
        std::vector<std::uint32_t> entries;
    };

    // Indices (ascending, at least `from`) of the entries whose folded word occurs in `folded`.
    std::vector<std::uint32_t> candidates(const icu::UnicodeString& folded,
                                          std::uint32_t from) const;
    enum class Outcome { unchanged, changed, tooLong };
    // Replaces every whole-word match of one entry. The text is left as it was when nothing
    // matched, when the matcher gave up, or when the text would grow beyond `maxLength` units.
    Outcome applyEntry(icu::UnicodeString& text, std::uint32_t index, int64_t maxLength) const;

    std::vector<Entry> entries_;
    std::vector<FoldedWord> words_;
    // Folded-word prefix (its first one, two or three units) → indices into words_.
    std::unordered_map<std::uint64_t, std::vector<std::uint32_t>> byPrefix_;
};

} // namespace lectorbell::detail
