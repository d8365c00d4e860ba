#pragma once

#include "platform/PlatformSynthesizer.hpp"

#include <iosfwd>
#include <memory>

namespace lectorbell::platform {
class Platform;
}

namespace lectorbell::cli {

// Exit status of a verb whose voice cannot speak.
inline constexpr int exitVoiceUnavailable = 4;

// The built-in voice, its default chosen by the user's languages; none (after an error line on
// `err`) when the synthesizer or its voice data is missing.
std::unique_ptr<platform::PlatformSynthesizer> openSystemVoice(platform::Platform& platform,
                                                               std::ostream& err);

} // namespace lectorbell::cli
