#include "platform/linux/audio/PcmFeed.hpp"

#include <algorithm>
#include <cstring>

namespace lectorbell::platform::audio {

namespace {
// What the sink is offered at a time: it asks for one period (20 ms) per read anyway.
constexpr qint64 offeredBytes = 1 << 16;
} // namespace

PcmFeed::PcmFeed(int channels)
    : channels_{std::max(channels, 1)} {
    open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

void PcmFeed::holdAfterCurrent() {
    auto current = std::find_if(entries_.begin(), entries_.end(),
                                [](const Entry& e) { return e.fed < e.samples.size(); });
    bool midBuffer = current != entries_.end() && current->fed > 0;
    if (midBuffer) {
        holdAfterCurrent_ = true;
    } else {
        held_ = true;
    }
}

qint64 PcmFeed::bytesAvailable() const {
    // Never at an end: silence follows the queue for as long as the application runs.
    return offeredBytes + QIODevice::bytesAvailable();
}

qint64 PcmFeed::readData(char* data, qint64 maxSize) {
    const auto frameBytes = static_cast<qint64>(channels_) * qint64{sizeof(std::int16_t)};
    const qint64 frames = maxSize / frameBytes;
    qint64 done = 0;
    while (done < frames) {
        // Entries handed out whole stay queued until the sink has played them.
        auto current = held_ ? entries_.end()
                             : std::find_if(entries_.begin(), entries_.end(), [](const Entry& e) {
                                   return e.fed < e.samples.size();
                               });
        if (current == entries_.end()) {
            std::memset(data + done * frameBytes, 0,
                        static_cast<std::size_t>((frames - done) * frameBytes));
            streamFrames_ += frames - done;
            done = frames;
            break;
        }
        if (current->fed == 0) {
            current->streamStart = streamFrames_;
        }
        auto remaining = static_cast<qint64>(current->samples.size() - current->fed) / channels_;
        qint64 take = std::min(remaining, frames - done);
        std::memcpy(data + done * frameBytes, current->samples.data() + current->fed,
                    static_cast<std::size_t>(take * frameBytes));
        current->fed += static_cast<std::size_t>(take * channels_);
        streamFrames_ += take;
        done += take;
        if (holdAfterCurrent_ && current->fed == current->samples.size()) {
            holdAfterCurrent_ = false;
            held_ = true;
        }
    }
    return done * frameBytes;
}

qint64 PcmFeed::writeData(const char* /*data*/, qint64 /*maxSize*/) {
    return -1;
}

} // namespace lectorbell::platform::audio
