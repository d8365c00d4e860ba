#pragma once

#include "lectorbell/UTF16Text.hpp"
#include "platform/PcmAudio.hpp"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lectorbell::platform {

// One installed voice of the built-in synthesizer.
struct PlatformVoice {
    std::string id;
    std::string name;
    // BCP-47, e.g. "en-US".
    std::string language;
    // "Premium", "Enhanced" or "Default".
    std::string quality;

    friend bool operator==(const PlatformVoice&, const PlatformVoice&) = default;
};

// A word of the rendered text and where its sound begins.
struct SpokenWord {
    // Offset of the word's first frame in the rendered samples.
    std::int64_t frame = 0;
    // The word, in UTF-16 units of the text given to render.
    UTF16Range range;

    friend bool operator==(const SpokenWord&, const SpokenWord&) = default;
};

// A text rendered to sound, with its words in order of their frames.
struct SynthesizedSpeech {
    PcmFormat format;
    PcmSamples samples;
    std::vector<SpokenWord> words;
};

// The platform's built-in voice. Rendering is offline: it plays nothing, so the same call serves
// speaking (through an AudioOutput), writing a file and measuring pace.
class PlatformSynthesizer {
public:
    // The 0..1 rate scale shared by every platform voice; 0.5 is the voice's normal speed.
    static constexpr float minimumRate = 0.0F;
    static constexpr float normalRate = 0.5F;
    static constexpr float maximumRate = 1.0F;

    virtual ~PlatformSynthesizer() = default;

    virtual std::vector<PlatformVoice> voices() const = 0;
    virtual std::string defaultVoiceId() const = 0;
    // The format of everything render returns.
    virtual PcmFormat format() const = 0;
    // Renders `text` with the voice `voiceId` (the default voice when it is unknown) at `rate`
    // (clamped to the scale above). None when the voice fails (logged); a text with nothing to
    // say, such as punctuation alone, renders to silence or to no samples at all.
    virtual std::optional<SynthesizedSpeech> render(std::u16string_view text,
                                                    const std::string& voiceId, float rate) = 0;
};

} // namespace lectorbell::platform
