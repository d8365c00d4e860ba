#pragma once

#include "platform/AudioOutput.hpp"

#include <algorithm>
#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace lectorbell::testing {

// An audio output that records what it is given and plays only when the test says so, on a
// virtual clock of frames: starts and finishes follow the played position exactly. With
// `failAfter` set it fails as a lost device does once that many frames have played; the next
// schedule opens it again.
class RecordingAudioOutput final : public platform::AudioOutput {
public:
    struct Scheduled {
        platform::AudioBufferId id = 0;
        platform::PcmSamples samples;
    };

    void setListener(platform::AudioOutputListener* listener) override { listener_ = listener; }
    std::optional<std::string> start(platform::PcmFormat format) override {
        format_ = format;
        return std::nullopt;
    }
    std::optional<platform::PcmFormat> format() const override { return format_; }
    platform::AudioBufferId schedule(platform::PcmSamples samples) override {
        failure_.reset();
        scheduled.push_back({++lastId_, samples});
        queue_.push_back({lastId_, samples.size(), 0, false});
        return lastId_;
    }
    void pause(platform::PauseBoundary boundary) override {
        calls.push_back(boundary == platform::PauseBoundary::immediate ? "pause(immediate)"
                                                                       : "pause(endOfBuffer)");
        bool midBuffer = !queue_.empty() && queue_.front().played > 0;
        holdAfterCurrent_ = boundary == platform::PauseBoundary::endOfBuffer && midBuffer;
        held_ = !holdAfterCurrent_;
    }
    void resume() override {
        calls.push_back("resume");
        held_ = holdAfterCurrent_ = false;
    }
    void stop() override {
        calls.push_back("stop");
        queue_.clear();
        held_ = holdAfterCurrent_ = false;
    }
    std::int64_t playedFrames() const override { return playedFrames_; }
    bool isBusy() const override { return !queue_.empty(); }
    bool isFlowing() const override { return true; }
    const std::optional<std::string>& failure() const override { return failure_; }

    // Plays up to `frames` frames of queued sound (mono), firing callbacks as buffers start and
    // end; stops early while held.
    void play(std::int64_t frames) {
        while (frames > 0 && !held_ && !queue_.empty()) {
            if (failAfter && playedFrames_ >= *failAfter) {
                failAfter.reset();
                queue_.clear();
                failure_ = platform::noAudioOutputDeviceMessage;
                listener_->audioOutputDidFail(*failure_);
                return;
            }
            Pending& front = queue_.front();
            platform::AudioBufferId id = front.id;
            if (!front.started) {
                front.started = true;
                listener_->audioBufferDidStart(id);
                if (queue_.empty() || queue_.front().id != id) {
                    continue;
                }
            }
            Pending& current = queue_.front();
            auto step = std::min<std::int64_t>(
                frames, static_cast<std::int64_t>(current.size - current.played));
            if (failAfter) {
                step = std::min(step, *failAfter - playedFrames_);
            }
            current.played += static_cast<std::size_t>(step);
            playedFrames_ += step;
            frames -= step;
            if (current.played == current.size) {
                queue_.pop_front();
                if (holdAfterCurrent_) {
                    holdAfterCurrent_ = false;
                    held_ = true;
                }
                listener_->audioBufferDidFinish(id);
            }
        }
    }
    void playAll() { play(INT64_MAX); }

    // Every scheduled sample, back to back: what a listener hears, gaps included.
    platform::PcmSamples stream() const {
        platform::PcmSamples all;
        for (const Scheduled& s : scheduled) {
            all.insert(all.end(), s.samples.begin(), s.samples.end());
        }
        return all;
    }

    std::vector<Scheduled> scheduled;
    std::vector<std::string> calls;
    std::optional<std::int64_t> failAfter;

private:
    std::optional<std::string> failure_;
    struct Pending {
        platform::AudioBufferId id = 0;
        std::size_t size = 0;
        std::size_t played = 0;
        bool started = false;
    };

    platform::AudioOutputListener* listener_ = nullptr;
    std::optional<platform::PcmFormat> format_;
    platform::AudioBufferId lastId_ = 0;
    std::deque<Pending> queue_;
    bool held_ = false;
    bool holdAfterCurrent_ = false;
    std::int64_t playedFrames_ = 0;
};

} // namespace lectorbell::testing
