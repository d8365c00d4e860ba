#pragma once

// The character side of the speech cleanup: which characters are dropped, which hint at markup,
// and the filter that drops them. Internal to ReadingCore.

#include <string>
#include <string_view>

namespace lectorbell::detail {

// False when no character is a markup hint, would be dropped or may start document markup:
// plain prose, which the cleanup returns as it is. One scan; ASCII goes through a table.
bool mayNeedCleanup(std::u16string_view text);

// What the cleanup has to do for a text that may need it.
struct CleanupNeeds {
    // Some character is a markup hint or would be dropped: the patterns must run.
    bool attention = false;
    // Some character may start markdown or HTML ("[", "<", "&", "\\", "`", "~").
    bool documentMarkup = false;
};
CleanupNeeds cleanupNeeds(std::u16string_view text);

// Kept characters are copied; each run of dropped ones becomes at most one space, and none at
// the start or after whitespace.
std::u16string filterSymbols(std::u16string_view text);

// How many characters of the text are exactly "|".
std::size_t countPipes(std::u16string_view text);

} // namespace lectorbell::detail
