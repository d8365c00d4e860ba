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
// A device that fails mid-stream drops what was not heard and tells the listener; the next start
// or schedule opens the device again (Qt reconnects to a restarted sound server within seconds).
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
    // Opens the default device in format_; the error message when it cannot.
    std::optional<std::string> open();
    void poll();
    // The open sink stopped with an error.
    void deviceFailed();
    // Tells the listener from the event loop, once however many buffers were scheduled.
    void reportFailureLater();

    AudioOutputListener* listener_ = nullptr;
    std::unique_ptr<QAudioSink> sink_;
    std::unique_ptr<PcmFeed> feed_;
    QTimer pollTimer_;
    PcmFormat format_;
    // start was called, so the format to open again is known.
    bool started_ = false;
    bool failureReportPending_ = false;
    std::optional<std::string> failure_;
    std::int64_t playedFrames_ = 0;
    AudioBufferId lastId_ = 0;
};

} // namespace lectorbell::platform::audio
