#include "SymbolFilter.hpp"

#include "Characters.hpp"
#include "DocumentMarkup.hpp"
#include "lectorbell/SpeechCleanup.hpp"

#include <algorithm>
#include <array>
#include <optional>

namespace lectorbell {

namespace {

// Always spoken, though most are symbols.
constexpr std::array<char32_t, 31> keepMath{
    U'+',      U'=',      U'<',      U'>',      U'\u00D7', U'\u00F7', U'\u00B1', U'\u2264',
    U'\u2265', U'\u2260', U'\u2248', U'\u221E', U'\u221A', U'\u2212', U'\u2211', U'\u220F',
    U'\u222B', U'\u2206', U'\u2202', U'\u2208', U'\u2209', U'\u2282', U'\u222A', U'\u2229',
    U'\u2200', U'\u2203', U'%',      U'\u2030', U'\u00B0', U'\u2032', U'\u2033'};

// Never spoken.
constexpr std::array<char32_t, 15> decorativePunctuation{
    U'\u2022', U'\u2023', U'\u25E6', U'\u2219', U'\u00B7', U'\u2043', U'\u203B', U'\u2756',
    U'\u00B6', U'\u2020', U'\u2021', U'\u2042', U'|',      U'\u00A6', U'`'};

// Their presence means that markup may need removing.
constexpr std::array<char16_t, 11> markupHints{u'*', u'_', u'#', u'>', u'|', u'`',
                                               u'-', u'~', u'=', u':', u'['};

template <class Set, class C>
bool contains(const Set& set, C c) {
    return std::find(set.begin(), set.end(), c) != set.end();
}

bool isDroppedCategory(char32_t c) {
    switch (u_charType(static_cast<UChar32>(c))) {
    case U_MATH_SYMBOL:
    case U_MODIFIER_SYMBOL:
    case U_OTHER_SYMBOL:
    case U_CONTROL_CHAR:
    case U_FORMAT_CHAR:
    case U_SURROGATE:
    case U_PRIVATE_USE_CHAR:
    case U_UNASSIGNED:
        return true;
    default:
        return false;
    }
}

bool looksLikeEmoji(std::u16string_view character) {
    std::size_t scalars = 0;
    bool wideEmoji = false;
    for (std::size_t i = 0; i < character.size();) {
        UChar32 c = 0;
        U16_NEXT(character.data(), i, character.size(), c);
        if (c == 0x20E3 || c == 0xFE0F || u_hasBinaryProperty(c, UCHAR_EMOJI_PRESENTATION)) {
            return true;
        }
        // Digits, "#" and "*" carry the emoji property too; the floor of 256 spares them.
        wideEmoji = wideEmoji || (c >= 256 && u_hasBinaryProperty(c, UCHAR_EMOJI));
        ++scalars;
    }
    return scalars >= 2 && wideEmoji;
}

struct CharacterClass {
    bool keep = false;
    bool attention = false;
    bool documentMarkup = false;
    // Either of the two above: the one test of the fast path.
    bool notice = false;
};

CharacterClass characterClass(bool keep, bool markupHint, bool documentHint) {
    return CharacterClass{keep, !keep || markupHint, documentHint,
                          !keep || markupHint || documentHint};
}

// Precomputed answers for the characters prose is made of: ASCII, Latin-1 and Latin Extended
// letters, and general punctuation (curly quotes, dashes). They come from the same rules.
constexpr char16_t latinEnd = 0x250;
constexpr char16_t punctuationStart = 0x2000;
constexpr char16_t punctuationEnd = 0x2070;

std::optional<std::size_t> commonIndex(char16_t c) {
    if (c < latinEnd) {
        return c;
    }
    if (c >= punctuationStart && c < punctuationEnd) {
        return latinEnd + (c - punctuationStart);
    }
    return std::nullopt;
}

using CommonClasses = std::array<CharacterClass, latinEnd + (punctuationEnd - punctuationStart)>;

const CommonClasses& commonClasses() {
    static const CommonClasses table = [] {
        CommonClasses t{};
        auto fill = [&](char16_t from, char16_t to) {
            for (char16_t c = from; c < to; ++c) {
                bool kept = SpeechCleanup::keep(std::u16string_view{&c, 1});
                t[*commonIndex(c)] = characterClass(kept, contains(markupHints, c),
                                                    contains(detail::documentMarkupHints, c));
            }
        };
        fill(0, latinEnd);
        fill(punctuationStart, punctuationEnd);
        return t;
    }();
    return table;
}

CharacterClass classify(const CommonClasses& common, std::u16string_view character) {
    if (character.size() == 1) {
        if (auto index = commonIndex(character[0])) {
            return common[*index];
        }
    }
    // Markup hints are ASCII, and no longer character is canonically equivalent to ASCII. The
    // document markup reading goes by units, so an ASCII first unit still counts for it.
    bool kept = SpeechCleanup::keep(character);
    return characterClass(
        kept, false, !character.empty() && contains(detail::documentMarkupHints, character[0]));
}

} // namespace

bool SpeechCleanup::keep(std::u16string_view character) {
    if (character.empty()) {
        return true;
    }
    if (looksLikeEmoji(character)) {
        return false;
    }
    char32_t first = detail::firstScalar(character);
    if (detail::isLetterScalar(first) || detail::isNumberScalar(first) ||
        detail::isWhitespaceScalar(first)) {
        return true;
    }
    if (auto single = detail::singleScalar(character)) {
        if (contains(keepMath, *single)) {
            return true;
        }
        if (contains(decorativePunctuation, *single)) {
            return false;
        }
    }
    return !isDroppedCategory(first);
}

namespace detail {

bool mayNeedCleanup(std::u16string_view text) {
    const CommonClasses& common = commonClasses();
    // Plain prose is mostly ASCII, where every unit is a whole character unless a combining
    // mark or the like follows it: a table lookup per unit until the first non-ASCII unit.
    std::size_t i = 0;
    for (; i < text.size() && text[i] < 128; ++i) {
        if (common[text[i]].notice) {
            if (i + 1 == text.size() || text[i + 1] < 128) {
                return true;
            }
            break;
        }
    }
    if (i == text.size()) {
        return false;
    }
    std::size_t from = text[i] < 128 ? i : asciiRunHandover(text, i);
    bool calm =
        forEachCharacter(text.substr(from), [&](std::u16string_view character, std::size_t) {
            return !classify(common, character).notice;
        });
    return !calm;
}

CleanupNeeds cleanupNeeds(std::u16string_view text) {
    const CommonClasses& common = commonClasses();
    CleanupNeeds needs;
    std::size_t i = 0;
    for (; i < text.size() && text[i] < 128; ++i) {
        const CharacterClass& c = common[text[i]];
        if (!c.attention && !c.documentMarkup) {
            continue;
        }
        needs.documentMarkup = needs.documentMarkup || c.documentMarkup;
        if (c.attention && !needs.attention) {
            if (i + 1 < text.size() && text[i + 1] >= 128) {
                break;
            }
            needs.attention = true;
        }
        if (needs.attention && needs.documentMarkup) {
            return needs;
        }
    }
    if (i == text.size()) {
        return needs;
    }
    std::size_t from = text[i] < 128 ? i : asciiRunHandover(text, i);
    forEachCharacter(text.substr(from), [&](std::u16string_view character, std::size_t) {
        CharacterClass c = classify(common, character);
        needs.attention = needs.attention || c.attention;
        needs.documentMarkup = needs.documentMarkup || c.documentMarkup;
        return !(needs.attention && needs.documentMarkup);
    });
    return needs;
}

std::u16string filterSymbols(std::u16string_view text) {
    const CommonClasses& common = commonClasses();
    std::u16string result;
    result.reserve(text.size());
    bool lastIsWhitespace = false;
    forEachCharacter(text, [&](std::u16string_view character, std::size_t) {
        if (classify(common, character).keep) {
            result.append(character);
            lastIsWhitespace = isWhitespaceScalar(firstScalar(character));
        } else if (!result.empty() && !lastIsWhitespace) {
            result.push_back(u' ');
            lastIsWhitespace = true;
        }
        return true;
    });
    return result;
}

std::size_t countPipes(std::u16string_view text) {
    if (text.find(u'|') == std::u16string_view::npos) {
        return 0;
    }
    std::size_t count = 0;
    forEachCharacter(text, [&](std::u16string_view character, std::size_t) {
        count += character == u"|" ? 1 : 0;
        return true;
    });
    return count;
}

} // namespace detail

} // namespace lectorbell
