#include "speech/SystemSpeechEngine.hpp"

#include "speech/SpeechSegments.hpp"

#include <algorithm>
#include <cmath>

namespace lectorbell::speech {

using platform::PlatformSynthesizer;

SystemSpeechEngine::SystemSpeechEngine(PlatformSynthesizer& synth, platform::AudioOutput& output)
    : synth_{synth}
    , output_{output} {
    output_.setListener(this);
}

SystemSpeechEngine::~SystemSpeechEngine() {
    output_.stop();
    output_.setListener(nullptr);
}

float SystemSpeechEngine::clampedRate(float rate) {
    if (std::isnan(rate)) {
        return PlatformSynthesizer::normalRate;
    }
    return std::clamp(rate, PlatformSynthesizer::minimumRate, PlatformSynthesizer::maximumRate);
}

void SystemSpeechEngine::speak(const Uuid& id, const std::u16string& text,
                               const std::optional<std::string>& voiceIdentifier, float rate) {
    std::optional<platform::SynthesizedSpeech> speech =
        synth_.render(text, voiceIdentifier.value_or(synth_.defaultVoiceId()), clampedRate(rate));
    utterances_.push_back(id);
    if (!speech) {
        // A moment of silence holds its place in the queue: the failure is reported when it
        // comes to sound, after what was queued before it, and never from inside speak.
        platform::SynthesizedSpeech silence{synth_.format(), {}, {}};
        platform::AudioBufferId buffer =
            output_.schedule(std::move(segmentsAtWords(silence).front().samples));
        segments_.emplace(buffer, Segment{id, true, true, true, {}});
        return;
    }
    // Nothing sounding or queued: this is the first utterance of a reading, and every
    // millisecond before its first word is a delay the listener hears.
    if (!output_.isBusy()) {
        trimLeadingSilence(*speech);
    }
    std::vector<SoundSegment> segments = segmentsAtWords(*speech);
    for (std::size_t i = 0; i < segments.size(); ++i) {
        Segment segment{id, i == 0, i + 1 == segments.size(), false, std::move(segments[i].words)};
        platform::AudioBufferId buffer = output_.schedule(std::move(segments[i].samples));
        segments_.emplace(buffer, std::move(segment));
    }
}

void SystemSpeechEngine::pause() {
    // Buffers are cut at word starts, so the end of the sounding buffer is the end of a word.
    output_.pause(platform::PauseBoundary::endOfBuffer);
}

void SystemSpeechEngine::resume() {
    output_.resume();
}

void SystemSpeechEngine::stopImmediately() {
    output_.stop();
    segments_.clear();
    std::deque<Uuid> dropped;
    dropped.swap(utterances_);
    for (const Uuid& id : dropped) {
        if (delegate_ != nullptr) {
            delegate_->speechDidCancel(id);
        }
    }
}

std::vector<SystemSpeechEngine::VoiceInfo> SystemSpeechEngine::availableVoices() const {
    return synth_.voices();
}

void SystemSpeechEngine::audioBufferDidStart(platform::AudioBufferId buffer) {
    auto it = segments_.find(buffer);
    if (it == segments_.end()) {
        return;
    }
    if (it->second.failed) {
        failQueued(ReadingError{ReadingError::Kind::speechUnavailable});
        return;
    }
    // Copies: a delegate may speak or stop from inside a callback, changing segments_.
    const Uuid utterance = it->second.utterance;
    const std::vector<UTF16Range> words = it->second.words;
    if (it->second.first && delegate_ != nullptr) {
        delegate_->speechDidStart(utterance);
    }
    for (const UTF16Range& word : words) {
        if (segments_.find(buffer) == segments_.end() || delegate_ == nullptr) {
            return;
        }
        delegate_->speechWillSpeak(utterance, word);
    }
}

void SystemSpeechEngine::audioBufferDidFinish(platform::AudioBufferId buffer) {
    auto it = segments_.find(buffer);
    if (it == segments_.end()) {
        return;
    }
    const Uuid utterance = it->second.utterance;
    const bool last = it->second.last;
    segments_.erase(it);
    if (!last) {
        return;
    }
    auto queued = std::find(utterances_.begin(), utterances_.end(), utterance);
    if (queued != utterances_.end()) {
        utterances_.erase(queued);
    }
    if (delegate_ != nullptr) {
        delegate_->speechDidFinish(utterance);
    }
}

void SystemSpeechEngine::audioOutputDidFail(const std::string& /*message*/) {
    // The output keeps its detailed message (a device, a file) for the log and the verbs.
    failQueued(ReadingError{ReadingError::Kind::audioOutputUnavailable});
}

void SystemSpeechEngine::failQueued(const ReadingError& error) {
    output_.stop();
    segments_.clear();
    std::deque<Uuid> dropped;
    dropped.swap(utterances_);
    for (std::size_t i = 0; i < dropped.size(); ++i) {
        // A delegate may change while it is told.
        if (delegate_ == nullptr) {
            continue;
        }
        if (i == 0) {
            delegate_->speechDidFail(dropped[i], error);
        } else {
            delegate_->speechDidCancel(dropped[i]);
        }
    }
}

} // namespace lectorbell::speech
