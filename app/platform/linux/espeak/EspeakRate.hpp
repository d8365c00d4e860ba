#pragma once

namespace lectorbell::platform::espeak {

// espeak-ng's rate setting, in its nominal words per minute, for a rate on the 0..1 platform scale.
int espeakWordsPerMinute(float rate);

} // namespace lectorbell::platform::espeak
