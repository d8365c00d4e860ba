#pragma once

#include <atomic>
#include <string>
#include <string_view>

namespace lectorbell::SpeechCleanup {

// The user's "Skip symbols, emoji and formatting marks" switch, process-wide. Written by the
// settings, read wherever speech is prepared; a stale read only shapes one more chunk the old way.
// When false, clean and removingReferenceMarkers return their input unchanged.
extern std::atomic<bool> enabled;

// Text fit for a voice: links become "link to <host>", markdown and wiki marks, citation marks,
// decorative symbols and emoji go, pipe tables read as comma lists, spacing is tidied. Plain
// prose that needs none of this is returned as it is after one scan.
std::u16string clean(std::u16string_view text);

// The text without citation and editing marks ("[12]", "[citation needed]") and the one space
// before each; unchanged when the switch is off or the text has no "[".
std::u16string removingReferenceMarkers(std::u16string_view text);

// Whether one character (an extended grapheme cluster) survives the symbol filter.
bool keep(std::u16string_view character);

} // namespace lectorbell::SpeechCleanup
