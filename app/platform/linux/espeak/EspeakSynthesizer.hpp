#pragma once

#include "platform/PlatformSynthesizer.hpp"

#include <string>
#include <vector>

namespace lectorbell::platform::espeak {

// The built-in voice on Linux: espeak-ng, rendering offline (synchronously) to 16-bit mono PCM.
// espeak-ng keeps one global state per process; every instance shares it under a lock.
class EspeakSynthesizer final : public PlatformSynthesizer {
public:
    // `preferredLanguages` (BCP-47, most preferred first) choose the default voice.
    explicit EspeakSynthesizer(const std::vector<std::string>& preferredLanguages = {});

    // False when espeak-ng or its voice data could not be loaded (logged once).
    bool isAvailable() const;

    std::vector<PlatformVoice> voices() const override;
    std::string defaultVoiceId() const override;
    PcmFormat format() const override;
    std::optional<SynthesizedSpeech> render(std::u16string_view text, const std::string& voiceId,
                                            float rate) override;

private:
    std::vector<PlatformVoice> voices_;
    std::string defaultVoiceId_;
    std::string lastUnknownVoice_;
};

// An espeak-ng language ("en-gb-x-rp") as a BCP-47 tag ("en-GB-x-rp").
std::string bcp47FromEspeakLanguage(std::string_view language);

} // namespace lectorbell::platform::espeak
