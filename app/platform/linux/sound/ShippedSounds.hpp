#pragma once

#include "platform/SoundClip.hpp"
#include "platform/SystemServices.hpp"

#include <cstdint>
#include <span>

namespace lectorbell::platform::sound {

// The WAV file of a sound, as data/sounds has it, embedded in the executable.
std::span<const std::uint8_t> shippedSoundFile(SystemSound sound);

// The sounds shipped inside the executable, decoded once on first use. An empty clip if the
// embedded file cannot be read, which a test guards against.
const SoundClip& shippedSound(SystemSound sound);

// Plays the shipped sound in the output's format, starting the output in the sound's own format
// when it has not been started.
void playShippedSound(SystemSound sound, AudioOutput& output);

} // namespace lectorbell::platform::sound
