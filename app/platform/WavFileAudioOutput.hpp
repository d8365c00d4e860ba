#pragma once

#include "platform/AudioOutput.hpp"

#include <deque>
#include <fstream>
#include <functional>
#include <memory>
#include <string>

namespace lectorbell::platform {

// Writes what would be heard to a WAV file instead of a device, as fast as it is scheduled:
// each buffer "plays" (is appended, with its start and finish callbacks) on a later turn of the
// main queue, so callers see the same order of events as with a device. A buffer counts as
// played once the file holds it; a write that fails (a full disk) fails the output for good,
// keeping what was written as a complete WAV file.
class WavFileAudioOutput final : public AudioOutput {
public:
    // Runs a function on a later turn of the main queue.
    using Post = std::function<void(std::function<void()>)>;

    WavFileAudioOutput(std::string path, Post post);
    ~WavFileAudioOutput() override;
    WavFileAudioOutput(const WavFileAudioOutput&) = delete;
    WavFileAudioOutput& operator=(const WavFileAudioOutput&) = delete;

    void setListener(AudioOutputListener* listener) override { listener_ = listener; }
    std::optional<std::string> start(PcmFormat format) override;
    std::optional<PcmFormat> format() const override {
        return file_.is_open() ? std::optional{format_} : std::nullopt;
    }
    AudioBufferId schedule(PcmSamples samples) override;
    void pause(PauseBoundary boundary) override;
    void resume() override;
    void stop() override;
    std::int64_t playedFrames() const override { return playedFrames_; }
    bool isBusy() const override { return !queue_.empty(); }
    bool isFlowing() const override { return true; }
    const std::optional<std::string>& failure() const override { return failure_; }

    // Completes the file's header; later buffers are not written. Also done on destruction.
    void close();

private:
    struct Queued {
        AudioBufferId id = 0;
        PcmSamples samples;
    };

    void postPlay();
    void playNext();
    void writeHeader(std::uint32_t dataBytes);
    // Flushes what was written since errno was cleared; false, with failure_ set, when the
    // file did not take it all.
    bool flushed();
    void fail();
    void reportFailureLater();

    std::string path_;
    Post post_;
    std::ofstream file_;
    PcmFormat format_;
    AudioBufferId lastId_ = 0;
    AudioOutputListener* listener_ = nullptr;
    std::deque<Queued> queue_;
    bool held_ = false;
    bool playPosted_ = false;
    bool failureReportPending_ = false;
    std::int64_t playedFrames_ = 0;
    std::uint64_t dataBytes_ = 0;
    std::optional<std::string> failure_;
    // Posted work checks this, so that it does nothing once the output is gone.
    std::shared_ptr<WavFileAudioOutput*> self_;
};

} // namespace lectorbell::platform
