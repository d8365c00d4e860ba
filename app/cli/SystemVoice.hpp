#pragma once

#include "platform/linux/EspeakSynthesizer.hpp"

#include <iosfwd>
#include <memory>

namespace lectorbell::cli {

// Exit status of a verb whose voice cannot speak.
inline constexpr int exitVoiceUnavailable = 4;

// The built-in voice, its default chosen by the user's languages; none (after an error line on
// `err`) when espeak-ng or its voice data is missing.
std::unique_ptr<platform::EspeakSynthesizer> openSystemVoice(std::ostream& err);

} // namespace lectorbell::cli
