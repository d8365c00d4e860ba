#pragma once

// The character side of the speech cleanup: which characters are dropped, which hint at markup,
// and the filter that drops them. Internal to ReadingCore.

#include <string>
#include <string_view>

namespace lectorbell::detail {

// True when some character is a markup hint or would be dropped: only then does the cleanup
// run its patterns. One scan; ASCII goes through a table.
bool needsCleanupAttention(std::u16string_view text);

// Kept characters are copied; each run of dropped ones becomes at most one space, and none at
// the start or after whitespace.
std::u16string filterSymbols(std::u16string_view text);

// How many characters of the text are exactly "|".
std::size_t countPipes(std::u16string_view text);

} // namespace lectorbell::detail
