#pragma once

#include "platform/PcmAudio.hpp"

#include <cstdint>
#include <optional>
#include <string>

namespace lectorbell::platform {

using AudioBufferId = std::uint64_t;

// Told when scheduled buffers actually sound. Calls arrive on the main thread, never from inside
// a call into the output.
class AudioOutputListener {
public:
    virtual ~AudioOutputListener() = default;
    // The buffer's first frame is playing now.
    virtual void audioBufferDidStart(AudioBufferId id) = 0;
    // The buffer's last frame has been played.
    virtual void audioBufferDidFinish(AudioBufferId id) = 0;
    // The device failed, or could not be opened for buffers scheduled since a failure. Every
    // buffer not yet finished is dropped without further callbacks; `message` is for the user.
    // Told once per failure, however many buffers were lost.
    virtual void audioOutputDidFail(const std::string& message) = 0;
};

enum class PauseBoundary {
    // Silence now, in the middle of a buffer.
    immediate,
    // Let the buffer that is sounding play to its end.
    endOfBuffer,
};

// The message shown when no sound can be played.
inline constexpr const char* noAudioOutputDeviceMessage = "No audio output device";

// A sound device fed with PCM buffers that play back to back, in the order scheduled, with no
// gap between them. Once started it stays open (playing silence when nothing is queued), so the
// first buffer after a pause in reading sounds at once. A device that fails is opened again by
// the next start or schedule, so output comes back with the device.
class AudioOutput {
public:
    virtual ~AudioOutput() = default;

    // Held weakly.
    virtual void setListener(AudioOutputListener* listener) = 0;
    // Opens the device for `format`; the error message when there is none or it fails.
    virtual std::optional<std::string> start(PcmFormat format) = 0;
    // The format of the open device; none until a start has succeeded.
    virtual std::optional<PcmFormat> format() const = 0;
    // Queues samples (interleaved, in the started format) behind everything already queued.
    virtual AudioBufferId schedule(PcmSamples samples) = 0;
    virtual void pause(PauseBoundary boundary) = 0;
    virtual void resume() = 0;
    // Drops every queued buffer and silences at once (a pause ends too); dropped buffers get
    // no callback.
    virtual void stop() = 0;
    // Frames of scheduled buffers played since start (silence in between is not counted).
    virtual std::int64_t playedFrames() const = 0;
    // True while buffers are queued or sounding.
    virtual bool isBusy() const = 0;
    // True once started output actually reaches the device. A sound server whose sink was idle
    // can take a second or two to start a new stream; once flowing, a scheduled buffer sounds
    // within the device buffer's length.
    virtual bool isFlowing() const = 0;
    // Why nothing can be played: the device failed or did not open. Cleared when it opens again.
    virtual const std::optional<std::string>& failure() const = 0;
};

} // namespace lectorbell::platform
