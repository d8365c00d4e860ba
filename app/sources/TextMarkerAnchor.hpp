#pragma once

#include "platform/AccessibilityElement.hpp"
#include "sources/WalkContext.hpp"

#include <cstdint>
#include <optional>
#include <vector>

namespace lectorbell {

// The offset in `leafText` of the character at the point, found through the web area's text
// markers: the page's text from the point on is matched against the leaf's text.
std::optional<std::int64_t> textMarkerOffset(std::u16string_view leafText,
                                             const std::vector<ElementRef>& chain,
                                             ScreenPoint point, const WalkContext& context);

// Where the start of `stream` lies in `leafText`: its first words, matched in order.
std::optional<std::int64_t> alignStream(std::u16string_view leafText, std::u16string_view stream);

} // namespace lectorbell
