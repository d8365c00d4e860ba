#pragma once

#include "platform/PlatformSynthesizer.hpp"

#include <cstdint>
#include <string_view>
#include <vector>

namespace lectorbell::platform::espeak {

// A word event as espeak-ng reports it.
struct EspeakWordEvent {
    // 1-based index of the word's first code point in the text given to espeak-ng.
    int textPosition = 0;
    // Where its sound begins in the rendered samples.
    std::int64_t frame = 0;
};

// The spoken words of `text` from espeak-ng's word events. espeak-ng counts code points (not
// UTF-16 units), sometimes reports a length of 0 and gives several events for one token (numbers),
// so only the event's start is used: it is mapped to UTF-16, moved past leading punctuation, and
// the word runs to the end of its whitespace-delimited token without trailing punctuation (or to
// the next word's start, for scripts written without spaces). Events that land on whitespace or
// do not move forward are dropped, so the result is strictly increasing.
std::vector<SpokenWord> spokenWords(std::u16string_view text,
                                    const std::vector<EspeakWordEvent>& events);

} // namespace lectorbell::platform::espeak
