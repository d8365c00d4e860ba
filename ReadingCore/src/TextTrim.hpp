#pragma once

// Trimming by Unicode scalars, as the shaping rules ask for it. Internal to ReadingCore.

#include <string_view>

namespace lectorbell::detail {

// Spaces (general category Zs) and tabs at both ends; line breaks stay.
std::u16string_view trimSpacesAndTabs(std::u16string_view text);
// Every white-space scalar at both ends, line breaks included.
std::u16string_view trimWhitespace(std::u16string_view text);

} // namespace lectorbell::detail
