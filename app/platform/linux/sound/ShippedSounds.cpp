#include "platform/linux/sound/ShippedSounds.hpp"

#include "platform/linux/LinuxLog.hpp"

namespace lectorbell::platform::sound {

namespace {

SoundClip load(SystemSound sound) {
    auto decoded = SoundClip::fromWav(shippedSoundFile(sound));
    if (auto* reason = std::get_if<std::string>(&decoded)) {
        qCWarning(lcReading, "sound: a shipped sound is unreadable: %s", reason->c_str());
        return {};
    }
    return std::get<SoundClip>(std::move(decoded));
}

} // namespace

const SoundClip& shippedSound(SystemSound sound) {
    static const SoundClip tink = load(SystemSound::tink);
    static const SoundClip pop = load(SystemSound::pop);
    return sound == SystemSound::tink ? tink : pop;
}

void playShippedSound(SystemSound sound, AudioOutput& output) {
    const SoundClip& clip = shippedSound(sound);
    if (clip.samples.empty()) {
        return;
    }
    std::optional<PcmFormat> format = output.format();
    if (!format) {
        if (std::optional<std::string> error = output.start(clip.format)) {
            qCWarning(lcReading, "sound: not played: %s", error->c_str());
            return;
        }
        format = clip.format;
    }
    output.schedule(clip.convertedTo(*format));
}

} // namespace lectorbell::platform::sound
