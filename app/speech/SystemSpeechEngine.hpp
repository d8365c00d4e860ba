#pragma once

#include "lectorbell/SpeechSynthesizing.hpp"
#include "platform/AudioOutput.hpp"
#include "platform/PlatformSynthesizer.hpp"

#include <deque>
#include <map>
#include <vector>

namespace lectorbell::speech {

// Speaks with the platform's built-in voice: each utterance is rendered at once (the voice is
// far faster than real time) and its sound is cut at the word starts into buffers that play back
// to back on the audio output. The output's buffer starts drive speechDidStart and
// speechWillSpeak, its buffer ends speechDidFinish, so callbacks follow what is heard, not what
// was rendered. A failure of the voice (speechUnavailable) or of the output
// (audioOutputUnavailable) reaches the delegate as speechDidFail for the oldest utterance not
// finished, with speechDidCancel for those behind it. Everything runs on the main thread, as do the
// output's callbacks.
class SystemSpeechEngine final : public SpeechSynthesizing, private platform::AudioOutputListener {
public:
    using VoiceInfo = platform::PlatformVoice;

    // Both are held, not owned; the output must already be started in the voice's format.
    SystemSpeechEngine(platform::PlatformSynthesizer& synth, platform::AudioOutput& output);
    ~SystemSpeechEngine() override;
    SystemSpeechEngine(const SystemSpeechEngine&) = delete;
    SystemSpeechEngine& operator=(const SystemSpeechEngine&) = delete;

    SpeechSynthesizerDelegate* delegate() const override { return delegate_; }
    void setDelegate(SpeechSynthesizerDelegate* delegate) override { delegate_ = delegate; }

    // An unknown voice identifier speaks with the default voice (the synthesizer logs it). An
    // utterance the voice fails to render fails in its turn, once those before it have been
    // heard.
    void speak(const Uuid& id, const std::u16string& text,
               const std::optional<std::string>& voiceIdentifier, float rate) override;
    // Lets the word that is sounding finish, then holds.
    void pause() override;
    void resume() override;
    // Silences at once and reports speechDidCancel, before returning, for every utterance it
    // dropped, oldest first.
    void stopImmediately() override;

    std::vector<VoiceInfo> availableVoices() const;

    // `rate` limited to the platform scale (NaN speaks at the normal rate).
    static float clampedRate(float rate);

private:
    // One scheduled buffer: part of an utterance, from one word start to the next.
    struct Segment {
        Uuid utterance;
        bool first = false;
        bool last = false;
        // Silence that stands for an utterance the voice failed to render.
        bool failed = false;
        std::vector<UTF16Range> words;
    };

    void audioBufferDidStart(platform::AudioBufferId buffer) override;
    void audioBufferDidFinish(platform::AudioBufferId buffer) override;
    void audioOutputDidFail(const std::string& message) override;
    // Drops everything queued: the oldest utterance fails with `error`, the others are cancelled.
    void failQueued(const ReadingError& error);

    platform::PlatformSynthesizer& synth_;
    platform::AudioOutput& output_;
    SpeechSynthesizerDelegate* delegate_ = nullptr;
    std::map<platform::AudioBufferId, Segment> segments_;
    // Utterances queued and not finished, oldest first.
    std::deque<Uuid> utterances_;
};

} // namespace lectorbell::speech
