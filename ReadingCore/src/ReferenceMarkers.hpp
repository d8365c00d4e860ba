#pragma once

// Citation and editing marks such as "[12]", "[3–5]", "[b]", "[citation needed]", shared by the
// cleanup and by the segmenter, which removes them from a block before cutting it.

#include "GuardedRegex.hpp"

#include <string>
#include <string_view>

namespace lectorbell::detail {

// The marker alone (case-insensitive) replaced by nothing; compiled once.
const RegexRewrite& referenceMarkerRewrite();
// The marker with at most one whitespace character before it, replaced by nothing.
const RegexRewrite& spacedReferenceMarkerRewrite();

// Removes every marker together with the one whitespace before it, whatever the cleanup switch
// says. Texts without "[" are returned as they are without running the pattern.
std::u16string removeReferenceMarkers(std::u16string_view text);

} // namespace lectorbell::detail
