#include "CompiledPronunciations.hpp"

#include "Characters.hpp"
#include "GuardedRegex.hpp"
#include "TextTrim.hpp"
#include "lectorbell/CoreLog.hpp"

#include <algorithm>
#include <unicode/uniset.h>

namespace lectorbell::detail {

namespace {

constexpr const char* owner = "pronunciations";
constexpr std::size_t maxPrefix = 3;

std::uint64_t prefixKey(const char16_t* units, std::size_t length) {
    std::uint64_t key = length;
    for (std::size_t i = 0; i < length; ++i) {
        key = key << 16 | units[i];
    }
    return key;
}

// What (?<![\p{L}\p{N}]) and (?![\p{L}\p{N}]) test under the case-insensitive option: ICU closes
// a set over case before matching, which adds a few marks such as U+0345.
const icu::UnicodeSet& wordCharacters() {
    static const icu::UnicodeSet set = [] {
        UErrorCode status = U_ZERO_ERROR;
        icu::UnicodeSet s{icu::UnicodeString{u"[\\p{L}\\p{N}]"}, status};
        s.closeOver(USET_CASE_INSENSITIVE);
        s.removeAllStrings();
        s.freeze();
        return s;
    }();
    return set;
}

bool isWholeWord(const icu::UnicodeString& text, int32_t start, int32_t end) {
    const icu::UnicodeSet& word = wordCharacters();
    if (start > 0 && word.contains(text.char32At(text.moveIndex32(start, -1)))) {
        return false;
    }
    return end >= text.length() || !word.contains(text.char32At(end));
}

std::size_t characterCount(std::u16string_view text) {
    std::size_t count = 0;
    forEachCharacter(text, [&](std::u16string_view, std::size_t) {
        ++count;
        return true;
    });
    return count;
}

// The word as a literal: every ASCII character other than a letter or digit is quoted.
icu::UnicodeString escapedLiteral(std::u16string_view word) {
    icu::UnicodeString out;
    for (char16_t c : word) {
        bool plain = c >= 128 || (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'z') ||
                     (c >= u'A' && c <= u'Z');
        if (!plain) {
            out.append(u'\\');
        }
        out.append(c);
    }
    return out;
}

struct Trimmed {
    std::u16string_view word;
    std::u16string_view sayAs;
    std::size_t length = 0;
};

} // namespace

CompiledPronunciations::CompiledPronunciations(const std::vector<PronunciationRule>& rules) {
    std::vector<Trimmed> pairs;
    pairs.reserve(rules.size());
    for (const PronunciationRule& rule : rules) {
        std::u16string_view word = trimSpacesAndTabs(rule.word);
        std::u16string_view sayAs = trimSpacesAndTabs(rule.sayAs);
        if (!word.empty() && !sayAs.empty() && fitsIcu(word) && fitsIcu(sayAs)) {
            pairs.push_back(Trimmed{word, sayAs, characterCount(word)});
        }
    }
    // Longer words first, so "New York" is replaced before "York"; ties keep list order.
    std::stable_sort(pairs.begin(), pairs.end(),
                     [](const Trimmed& a, const Trimmed& b) { return a.length > b.length; });

    entries_.reserve(pairs.size());
    // Many rules may look for the same word (a user's fix and a shared one): the text is
    // searched once per distinct folded word.
    std::unordered_map<std::u16string, std::size_t> wordIds;
    std::size_t skipped = 0;
    for (const Trimmed& pair : pairs) {
        UErrorCode status = U_ZERO_ERROR;
        UParseError parseError{};
        std::unique_ptr<const icu::RegexPattern> pattern{icu::RegexPattern::compile(
            escapedLiteral(pair.word), UREGEX_CASE_INSENSITIVE, parseError, status)};
        if (U_FAILURE(status) || !pattern) {
            ++skipped;
            continue;
        }
        icu::UnicodeString folded = copyOf(pair.word);
        folded.foldCase();
        if (folded.isEmpty()) {
            ++skipped;
            continue;
        }
        auto index = static_cast<std::uint32_t>(entries_.size());
        auto [word, added] = wordIds.try_emplace(toU16(folded), words_.size());
        if (added) {
            std::size_t keyLength = std::min<std::size_t>(maxPrefix, folded.length());
            byPrefix_[prefixKey(folded.getBuffer(), keyLength)].push_back(
                static_cast<std::uint32_t>(words_.size()));
            words_.push_back(FoldedWord{std::move(folded), {}});
        }
        words_[word->second].entries.push_back(index);
        // The sayAs text goes in as it is, never read as a template.
        entries_.push_back(Entry{std::move(pattern), copyOf(pair.sayAs)});
    }
    if (skipped > 0) {
        coreLog("reading", "pronunciations: " + std::to_string(skipped) +
                               " rule(s) skipped, their word cannot be matched");
    }
}

std::vector<std::uint32_t> CompiledPronunciations::candidates(const icu::UnicodeString& folded,
                                                              std::uint32_t from) const {
    std::vector<std::uint32_t> found;
    // A word found once (or with no entry left to run) is not looked for again.
    std::vector<char> settled(words_.size(), 0);
    const char16_t* units = folded.getBuffer();
    const auto n = static_cast<std::size_t>(folded.length());
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t k = 1; k <= maxPrefix && i + k <= n; ++k) {
            auto bucket = byPrefix_.find(prefixKey(units + i, k));
            if (bucket == byPrefix_.end()) {
                continue;
            }
            for (std::uint32_t id : bucket->second) {
                const FoldedWord& word = words_[id];
                if (settled[id] != 0 || word.entries.back() < from) {
                    continue;
                }
                if (folded.compare(static_cast<int32_t>(i), word.folded.length(), word.folded) ==
                    0) {
                    settled[id] = 1;
                    // Ascending: skip the entries that have already run.
                    found.insert(found.end(),
                                 std::lower_bound(word.entries.begin(), word.entries.end(), from),
                                 word.entries.end());
                }
            }
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

CompiledPronunciations::Outcome CompiledPronunciations::applyEntry(icu::UnicodeString& text,
                                                                   std::uint32_t index,
                                                                   int64_t maxLength) const {
    const Entry& entry = entries_[index];
    GuardedMatcher guarded{*entry.word, text};
    icu::UnicodeString result;
    int32_t copied = 0;
    bool replaced = false;
    bool found = guarded.find();
    while (found) {
        int32_t start = guarded.matcher().start(guarded.status());
        int32_t end = guarded.matcher().end(guarded.status());
        if (guarded.failed()) {
            break;
        }
        if (isWholeWord(text, start, end)) {
            result.append(text, copied, start - copied).append(entry.sayAs);
            if (result.length() > maxLength) {
                return Outcome::tooLong;
            }
            copied = end;
            replaced = true;
            found = guarded.find();
        } else {
            // The pattern fails at this start; try from the next character, as a regex scan
            // would, rather than after the rejected match.
            int32_t next = text.moveIndex32(start, 1);
            found = next < text.length() && guarded.find(next);
        }
    }
    if (guarded.failed()) {
        guarded.logSkipped(owner, "#" + std::to_string(index));
        return Outcome::unchanged;
    }
    if (!replaced) {
        return Outcome::unchanged;
    }
    result.append(text, copied, text.length() - copied);
    text = std::move(result);
    return Outcome::changed;
}

std::u16string CompiledPronunciations::apply(std::u16string_view text) const {
    if (entries_.empty() || text.empty() || !fitsIcu(text)) {
        return std::u16string{text};
    }
    // A word whose sayAs contains the word itself is found again by each later rule for it, so
    // a hostile list could double the text rule after rule: past this length the remaining rules
    // are left out and the text is spoken as it stands.
    const auto maxLength = static_cast<int64_t>(text.size()) * 64 + 65536;
    icu::UnicodeString working = readOnlyAlias(text);
    icu::UnicodeString folded = working;
    folded.foldCase();
    std::vector<std::uint32_t> pending = candidates(folded, 0);
    for (std::size_t k = 0; k < pending.size(); ++k) {
        std::uint32_t index = pending[k];
        Outcome outcome = applyEntry(working, index, maxLength);
        if (outcome == Outcome::tooLong) {
            coreLog("reading", "pronunciations: rules from #" + std::to_string(index) +
                                   " left out (output too long) for a text of " +
                                   std::to_string(text.size()) + " UTF-16 units");
            break;
        }
        if (outcome == Outcome::changed) {
            // The text changed: later rules may now find words they could not before, or none.
            folded = working;
            folded.foldCase();
            pending = candidates(folded, index + 1);
            k = static_cast<std::size_t>(-1);
        }
    }
    return toU16(working);
}

} // namespace lectorbell::detail
