#include "platform/WavFileAudioOutput.hpp"

#include <array>
#include <bit>
#include <cerrno>
#include <cstring>

namespace lectorbell::platform {

namespace {

void putLittleEndian(std::ofstream& file, std::uint32_t value, int bytes) {
    std::array<char, 4> out{};
    for (int i = 0; i < bytes; ++i) {
        out[static_cast<std::size_t>(i)] = static_cast<char>((value >> (8 * i)) & 0xFF);
    }
    file.write(out.data(), bytes);
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
    file_.open(path_, std::ios::binary | std::ios::trunc);
    if (!file_) {
        return "cannot write " + path_ + ": " + std::strerror(errno);
    }
    writeHeader(0);
    return std::nullopt;
}

void WavFileAudioOutput::writeHeader(std::uint32_t dataBytes) {
    const auto channels = static_cast<std::uint32_t>(format_.channels);
    const auto rate = static_cast<std::uint32_t>(format_.sampleRate);
    file_.seekp(0);
    file_.write("RIFF", 4);
    putLittleEndian(file_, 36 + dataBytes, 4);
    file_.write("WAVEfmt ", 8);
    putLittleEndian(file_, 16, 4); // size of the format chunk
    putLittleEndian(file_, 1, 2);  // integer PCM
    putLittleEndian(file_, channels, 2);
    putLittleEndian(file_, rate, 4);
    putLittleEndian(file_, rate * channels * 2, 4); // bytes per second
    putLittleEndian(file_, channels * 2, 2);        // bytes per frame
    putLittleEndian(file_, 16, 2);                  // bits per sample
    file_.write("data", 4);
    putLittleEndian(file_, dataBytes, 4);
    file_.seekp(0, std::ios::end);
}

void WavFileAudioOutput::close() {
    if (file_.is_open()) {
        writeHeader(static_cast<std::uint32_t>(dataBytes_));
        file_.close();
    }
}

AudioBufferId WavFileAudioOutput::schedule(PcmSamples samples) {
    AudioBufferId id = ++lastId_;
    queue_.push_back({id, std::move(samples)});
    postPlay();
    return id;
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
        file_.write(reinterpret_cast<const char*>(next.samples.data()),
                    static_cast<std::streamsize>(next.samples.size() * sizeof(std::int16_t)));
        dataBytes_ += next.samples.size() * sizeof(std::int16_t);
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
