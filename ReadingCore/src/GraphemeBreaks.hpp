#pragma once

// Grapheme boundaries from ICU's character break iterator. Internal to ReadingCore: the public
// headers show no ICU types.

#include <cstdint>
#include <string_view>

namespace lectorbell::detail {

// Both take an offset strictly inside the text (0 < i < length).
std::int64_t graphemeStartAtOrBefore(std::u16string_view s, std::int64_t i);
std::int64_t graphemeEndAtOrAfter(std::u16string_view s, std::int64_t i);

} // namespace lectorbell::detail
