#pragma once

// Whether a full stop, "!" or "?" ends a sentence where the tokenizer or the abbreviation merge
// would carry on. Internal to ReadingCore.

#include <string_view>

namespace lectorbell::detail {

// True when `before` (a sentence candidate ending in ".", "!" or "?", perhaps with closing quotes
// and spaces after it) ends a sentence although `after` would otherwise be joined to it:
// - a digit starts `after` behind a full stop that is no abbreviation, short label ("p.", "Sec.",
//   "Bldg.") or list number: "It ended. 42 people came.";
// - a word such as "iPhones" or "eBay" (lower-case first, upper-case inside) starts `after`
//   behind a stop that is no abbreviation;
// - an abbreviation that often closes a sentence ("Co.", "Inc.", "etc.", "a.m.", "U.S.") comes
//   before a word that starts sentences (a pronoun, determiner, conjunction, question word or
//   auxiliary, or a personal title such as "Mr."), unless `before` is only a short opening phrase
//   such as "At 5 a.m.". Titles ("Dr.", "St.") and abbreviations that lead into what follows
//   ("e.g.", "fig.", "no.") never end a sentence;
// - a one-letter initial after a lower-case word ("than I.", "vitamin C.") comes before such a
//   sentence start; an initial after a name ("John F.", "Albert I.") never ends one.
// An ellipsis is never judged here.
bool stopEndsSentence(std::u16string_view before, std::u16string_view after);

// "...", ". . ." or "…" at the end of s (trailing whitespace ignored).
bool endsWithEllipsis(std::u16string_view s);

// A short word before the final period followed by a number: "N°. 12", "p. 5".
bool numberAfterShortWord(std::u16string_view before, std::u16string_view after);

} // namespace lectorbell::detail
