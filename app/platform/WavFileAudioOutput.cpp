#include "platform/WavFileAudioOutput.hpp"

#include "lectorbell/CoreLog.hpp"

#include <array>
#include <bit>
#include <cerrno>
#include <cstring>

namespace lectorbell::platform {

namespace {

constexpr std::size_t headerBytes = 44;

// Puts `value` at `at` as `bytes` little-endian bytes.
void putLittleEndian(std::array<char, headerBytes>& header, std::size_t at, std::uint32_t value,
                     int bytes) {
    for (int i = 0; i < bytes; ++i) {
        header.at(at + static_cast<std::size_t>(i)) = static_cast<char>((value >> (8 * i)) & 0xFF);
    }
}

std::string cannotWrite(const std::string& path, int error) {
    std::string message = "cannot write " + path;
    if (error != 0) {
        message += std::string{": "} + std::strerror(error);
    }
    return message;
}

} // namespace

WavFileAudioOutput::WavFileAudioOutput(std::string path, Post post)
    : path_{std::move(path)}
    , post_{std::move(post)}
    , self_{std::make_shared<WavFileAudioOutput*>(this)} {}

WavFileAudioOutput::~WavFileAudioOutput() {
    *self_ = nullptr;
    close();
}

std::optional<std::string> WavFileAudioOutput::start(PcmFormat format) {
    format_ = format;
    // Unbuffered: a write that fails leaves nothing pending, so the header can still be
    // completed, and each buffer reaches the file in one write.
    file_.rdbuf()->pubsetbuf(nullptr, 0);
    errno = 0;
    file_.open(path_, std::ios::binary | std::ios::trunc);
    if (!file_) {
        failure_ = cannotWrite(path_, errno);
        return failure_;
    }
    writeHeader(0);
    // A file that takes nothing (a full disk) is found before reading starts.
    if (!flushed()) {
        file_.close();
        return failure_;
    }
    return std::nullopt;
}

bool WavFileAudioOutput::flushed() {
    file_.flush();
    if (!file_) {
        // errno was cleared before the writes; the failed one set it.
        failure_ = cannotWrite(path_, errno);
        return false;
    }
    return true;
}

void WavFileAudioOutput::writeHeader(std::uint32_t dataBytes) {
    const auto channels = static_cast<std::uint32_t>(format_.channels);
    const auto rate = static_cast<std::uint32_t>(format_.sampleRate);
    std::array<char, headerBytes> header{};
    std::memcpy(header.data(), "RIFF", 4);
    putLittleEndian(header, 4, 36 + dataBytes, 4);
    std::memcpy(header.data() + 8, "WAVEfmt ", 8);
    putLittleEndian(header, 16, 16, 4); // size of the format chunk
    putLittleEndian(header, 20, 1, 2);  // integer PCM
    putLittleEndian(header, 22, channels, 2);
    putLittleEndian(header, 24, rate, 4);
    putLittleEndian(header, 28, rate * channels * 2, 4); // bytes per second
    putLittleEndian(header, 32, channels * 2, 2);        // bytes per frame
    putLittleEndian(header, 34, 16, 2);                  // bits per sample
    std::memcpy(header.data() + 36, "data", 4);
    putLittleEndian(header, 40, dataBytes, 4);
    file_.seekp(0);
    file_.write(header.data(), static_cast<std::streamsize>(header.size()));
    file_.seekp(0, std::ios::end);
}

void WavFileAudioOutput::close() {
    if (!file_.is_open()) {
        return;
    }
    // After a failed write the stream refuses everything until cleared; the header is written
    // over the old one, so it fits even on a full disk.
    file_.clear();
    writeHeader(static_cast<std::uint32_t>(dataBytes_));
    file_.close();
    if (!file_) {
        coreLog("lectorbell.reading", "audio: the WAV header could not be completed");
    }
}

AudioBufferId WavFileAudioOutput::schedule(PcmSamples samples) {
    AudioBufferId id = ++lastId_;
    if (failure_) {
        if (!failureReportPending_) {
            reportFailureLater();
        }
        return id;
    }
    queue_.push_back({id, std::move(samples)});
    postPlay();
    return id;
}

void WavFileAudioOutput::reportFailureLater() {
    failureReportPending_ = true;
    post_([self = self_, message = *failure_] {
        if (*self == nullptr) {
            return;
        }
        (*self)->failureReportPending_ = false;
        if ((*self)->listener_ != nullptr) {
            (*self)->listener_->audioOutputDidFail(message);
        }
    });
}

void WavFileAudioOutput::fail() {
    queue_.clear();
    close();
    if (listener_ != nullptr) {
        listener_->audioOutputDidFail(*failure_);
    }
}

void WavFileAudioOutput::postPlay() {
    if (held_ || queue_.empty() || playPosted_) {
        return;
    }
    playPosted_ = true;
    post_([self = self_] {
        if (*self != nullptr) {
            (*self)->playNext();
        }
    });
}

void WavFileAudioOutput::playNext() {
    playPosted_ = false;
    if (held_ || queue_.empty()) {
        return;
    }
    Queued next = std::move(queue_.front());
    queue_.pop_front();
    if (file_.is_open()) {
        static_assert(std::endian::native == std::endian::little, "WAV data is little-endian");
        const std::size_t bytes = next.samples.size() * sizeof(std::int16_t);
        errno = 0;
        file_.write(reinterpret_cast<const char*>(next.samples.data()),
                    static_cast<std::streamsize>(bytes));
        if (!flushed()) {
            fail();
            return;
        }
        dataBytes_ += bytes;
    }
    playedFrames_ += frameCount(next.samples, format_);
    auto self = self_;
    if (listener_ != nullptr) {
        listener_->audioBufferDidStart(next.id);
    }
    if (*self != nullptr && listener_ != nullptr) {
        listener_->audioBufferDidFinish(next.id);
    }
    if (*self != nullptr) {
        postPlay();
    }
}

void WavFileAudioOutput::pause(PauseBoundary /*boundary*/) {
    // Buffers are written whole, so every pause falls on a buffer's end.
    held_ = true;
}

void WavFileAudioOutput::resume() {
    held_ = false;
    postPlay();
}

void WavFileAudioOutput::stop() {
    queue_.clear();
    held_ = false;
}

} // namespace lectorbell::platform
