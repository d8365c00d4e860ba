#pragma once

#include "lectorbell/ReadingModel.hpp"
#include "lectorbell/UTF16Text.hpp"
#include "lectorbell/Uuid.hpp"

#include <optional>
#include <string>

namespace lectorbell {

// What a speech engine reports back about the utterances it was given. Engines deliver every
// callback on the thread that owns the session (the main thread).
class SpeechSynthesizerDelegate {
public:
    virtual ~SpeechSynthesizerDelegate() = default;

    // The utterance has begun to sound.
    virtual void speechDidStart(const Uuid& id) = 0;
    // The utterance has been spoken to the end.
    virtual void speechDidFinish(const Uuid& id) = 0;
    // The utterance was dropped without being finished.
    virtual void speechDidCancel(const Uuid& id) = 0;
    // The utterance cannot be spoken (the voice or the sound device failed); the engine has
    // dropped it, and cancelled every utterance queued behind it. Never called from inside speak.
    virtual void speechDidFail(const Uuid& id, const ReadingError& error) = 0;
    // The word at `utf16Range` (in the text given to speak) is about to sound.
    virtual void speechWillSpeak(const Uuid& id, UTF16Range utf16Range) = 0;
};

// A speech engine as the reading session drives it.
class SpeechSynthesizing {
public:
    virtual ~SpeechSynthesizing() = default;

    // Held weakly: the engine never owns or deletes its delegate.
    virtual SpeechSynthesizerDelegate* delegate() const = 0;
    virtual void setDelegate(SpeechSynthesizerDelegate* delegate) = 0;

    // Queues one utterance behind those already queued; `id` names it in every callback.
    // `rate` is on the 0..1 platform scale where 0.5 is the voice's normal speed.
    virtual void speak(const Uuid& id, const std::u16string& text,
                       const std::optional<std::string>& voiceIdentifier, float rate) = 0;
    // Pauses speech; the queue is kept.
    virtual void pause() = 0;
    virtual void resume() = 0;
    // Silences the current utterance at once and drops everything queued.
    virtual void stopImmediately() = 0;
};

} // namespace lectorbell
