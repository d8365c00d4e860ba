#pragma once

// The speech shaping steps the segmenter applies. Internal to ReadingCore.

#include <string>
#include <string_view>

namespace lectorbell::detail {

// Citation and editing marks removed from a block's text before it is cut (when cleanup is on).
std::u16string removeReferenceMarkers(std::u16string_view text);
// Cleanup, then numbers spelled out, then the user's pronunciation rules.
std::u16string shapeForSpeech(std::u16string_view text);

} // namespace lectorbell::detail
