#pragma once

#include "platform/AudioOutput.hpp"

#include <QTimer>
#include <deque>
#include <memory>
#include <optional>
#include <string>

class QAudioSink;

namespace lectorbell::platform::audio {

class PcmFeed;

// Plays through Qt Multimedia (QAudioSink on PulseAudio or PipeWire). The sink pulls from a feed
// that hands out the queued buffers back to back and silence in between, so the stream never
// closes while the application runs: an idle PulseAudio stream takes up to 1.7 s to sound again.
// Buffer starts and ends are found from the sink's played position, polled on the main thread.
// A device that fails mid-stream completes everything queued (logged), so no reading hangs.
class QtAudioOutput final : public AudioOutput {
public:
    QtAudioOutput();
    ~QtAudioOutput() override;
    QtAudioOutput(const QtAudioOutput&) = delete;
    QtAudioOutput& operator=(const QtAudioOutput&) = delete;

    void setListener(AudioOutputListener* listener) override;
    std::optional<std::string> start(PcmFormat format) override;
    std::optional<PcmFormat> format() const override {
        return sink_ ? std::optional{format_} : std::nullopt;
    }
    AudioBufferId schedule(PcmSamples samples) override;
    void pause(PauseBoundary boundary) override;
    void resume() override;
    void stop() override;
    std::int64_t playedFrames() const override;
    bool isBusy() const override;
    // PulseAudio's null sink sleeps up to 2 s before it plays a new stream.
    bool isFlowing() const override;
    const std::optional<std::string>& failure() const override { return failure_; }

private:
    void poll();
    void failAll(const std::string& reason);

    AudioOutputListener* listener_ = nullptr;
    std::unique_ptr<QAudioSink> sink_;
    std::unique_ptr<PcmFeed> feed_;
    QTimer pollTimer_;
    PcmFormat format_;
    std::optional<std::string> failure_;
    std::int64_t playedFrames_ = 0;
};

} // namespace lectorbell::platform::audio
