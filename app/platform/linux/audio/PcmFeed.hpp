#pragma once

#include "platform/AudioOutput.hpp"

#include <QIODevice>
#include <cstdint>
#include <deque>
#include <vector>

namespace lectorbell::platform::audio {

// The stream a QAudioSink pulls from: queued buffers back to back, silence when there are none
// (or while paused). Positions are frames of the whole stream, silence included.
class PcmFeed final : public QIODevice {
public:
    struct Entry {
        AudioBufferId id = 0;
        PcmSamples samples;
        // Stream frame of the entry's first sample; -1 until it has been handed to the sink.
        std::int64_t streamStart = -1;
        // Samples already handed to the sink.
        std::size_t fed = 0;
        bool started = false;
    };

    explicit PcmFeed(int channels);

    std::deque<Entry>& entries() { return entries_; }
    const std::deque<Entry>& entries() const { return entries_; }
    // Silence from now on; queued entries are kept.
    void holdNow() { held_ = true; }
    // Silence once the entry being handed out has been handed out whole.
    void holdAfterCurrent();
    void release() { held_ = false, holdAfterCurrent_ = false; }
    std::int64_t streamFrames() const { return streamFrames_; }

    bool isSequential() const override { return true; }
    qint64 bytesAvailable() const override;

protected:
    qint64 readData(char* data, qint64 maxSize) override;
    qint64 writeData(const char* data, qint64 maxSize) override;

private:
    int channels_;
    std::deque<Entry> entries_;
    bool held_ = false;
    bool holdAfterCurrent_ = false;
    std::int64_t streamFrames_ = 0;
};

} // namespace lectorbell::platform::audio
