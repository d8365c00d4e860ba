#include "platform/linux/audio/QtAudioOutput.hpp"

#include "platform/linux/LinuxLog.hpp"
#include "platform/linux/audio/PcmFeed.hpp"

#include <QAudioDevice>
#include <QAudioFormat>
#include <QAudioSink>
#include <QMediaDevices>
#include <algorithm>

namespace lectorbell::platform::audio {

namespace {
// How far the feed runs ahead of what is heard. Small, because a stop or an immediate pause can
// only silence what has not yet been handed to the sound server; large enough that a busy main
// thread (a chunk being rendered) does not starve the stream.
constexpr int deviceBufferMs = 60;
// How often buffer starts and ends are looked for: word highlighting follows this closely.
constexpr int pollIntervalMs = 5;
} // namespace

QtAudioOutput::QtAudioOutput() {
    pollTimer_.setTimerType(Qt::PreciseTimer);
    pollTimer_.setInterval(pollIntervalMs);
    QObject::connect(&pollTimer_, &QTimer::timeout, [this] { poll(); });
}

QtAudioOutput::~QtAudioOutput() {
    pollTimer_.stop();
    if (sink_) {
        QObject::disconnect(sink_.get(), nullptr, &pollTimer_, nullptr);
        sink_->stop();
    }
}

void QtAudioOutput::setListener(AudioOutputListener* listener) {
    listener_ = listener;
}

std::optional<std::string> QtAudioOutput::start(PcmFormat format) {
    if (sink_ && format == format_) {
        return std::nullopt;
    }
    format_ = format;
    started_ = true;
    return open();
}

std::optional<std::string> QtAudioOutput::open() {
    if (sink_) {
        // A change of format: what was queued for the old stream goes with it.
        QObject::disconnect(sink_.get(), nullptr, &pollTimer_, nullptr);
        sink_->stop();
        sink_.reset();
    }
    feed_.reset();
    pollTimer_.stop();
    failure_ = std::string{noAudioOutputDeviceMessage};

    QAudioDevice device = QMediaDevices::defaultAudioOutput();
    if (device.isNull()) {
        qCWarning(lcReading, "audio: no output device");
        return failure_;
    }
    QAudioFormat qformat;
    qformat.setSampleRate(format_.sampleRate);
    qformat.setChannelCount(format_.channels);
    qformat.setSampleFormat(QAudioFormat::Int16);

    auto feed = std::make_unique<PcmFeed>(format_.channels);
    auto sink = std::make_unique<QAudioSink>(device, qformat);
    sink->setBufferSize(
        static_cast<qsizetype>(qformat.bytesForDuration(qint64{deviceBufferMs} * 1000)));
    sink->start(feed.get());
    if (sink->error() != QAudio::NoError || sink->state() == QAudio::StoppedState) {
        qCWarning(lcReading, "audio: the output device did not open (error %d)",
                  static_cast<int>(sink->error()));
        return failure_;
    }
    // Queued to the main thread should the sound server's thread emit it.
    QObject::connect(sink.get(), &QAudioSink::stateChanged, &pollTimer_,
                     [this, opened = sink.get()](QAudio::State state) {
                         if (state == QAudio::StoppedState && opened == sink_.get() &&
                             opened->error() != QAudio::NoError) {
                             deviceFailed();
                         }
                     });
    sink_ = std::move(sink);
    feed_ = std::move(feed);
    failure_.reset();
    return std::nullopt;
}

AudioBufferId QtAudioOutput::schedule(PcmSamples samples) {
    const AudioBufferId id = ++lastId_;
    if (!sink_ && !failureReportPending_) {
        if (!started_ || open().has_value()) {
            failure_ = failure_.value_or(noAudioOutputDeviceMessage);
            reportFailureLater();
        }
    }
    if (!sink_) {
        // Lost with the device: the failure report stands for it.
        return id;
    }
    samples.resize(samples.size() - samples.size() % static_cast<std::size_t>(format_.channels));
    feed_->entries().push_back({id, std::move(samples), -1, 0, false});
    pollTimer_.start();
    return id;
}

void QtAudioOutput::reportFailureLater() {
    failureReportPending_ = true;
    QTimer::singleShot(0, &pollTimer_, [this, message = *failure_] {
        failureReportPending_ = false;
        if (listener_ != nullptr) {
            listener_->audioOutputDidFail(message);
        }
    });
}

void QtAudioOutput::deviceFailed() {
    qCWarning(lcReading, "audio: the output device failed (error %d); dropping %zu buffers",
              static_cast<int>(sink_->error()), feed_ ? feed_->entries().size() : std::size_t{0});
    pollTimer_.stop();
    // We are inside the sink's own signal: it and the feed it reads go from the event loop.
    QAudioSink* sink = sink_.release();
    if (feed_) {
        feed_.release()->setParent(sink);
    }
    sink->deleteLater();
    failure_ = std::string{noAudioOutputDeviceMessage};
    if (listener_ != nullptr) {
        listener_->audioOutputDidFail(*failure_);
    }
}

void QtAudioOutput::pause(PauseBoundary boundary) {
    if (!feed_) {
        return;
    }
    if (boundary == PauseBoundary::immediate) {
        feed_->holdNow();
    } else {
        feed_->holdAfterCurrent();
    }
}

void QtAudioOutput::resume() {
    if (feed_) {
        feed_->release();
    }
}

void QtAudioOutput::stop() {
    if (!feed_) {
        return;
    }
    // What the sound server already holds (at most deviceBufferMs) still plays out.
    feed_->entries().clear();
    feed_->release();
}

std::int64_t QtAudioOutput::playedFrames() const {
    return playedFrames_;
}

bool QtAudioOutput::isFlowing() const {
    return sink_ && sink_->processedUSecs() > std::int64_t{deviceBufferMs} * 1000;
}

bool QtAudioOutput::isBusy() const {
    return feed_ && !feed_->entries().empty();
}

void QtAudioOutput::poll() {
    if (!feed_ || !sink_) {
        pollTimer_.stop();
        return;
    }
    // processedUSecs is the sound server's read position less its latency: what has been heard.
    const std::int64_t heard =
        sink_->processedUSecs() * static_cast<std::int64_t>(format_.sampleRate) / 1'000'000;
    auto& entries = feed_->entries();
    // Callbacks may schedule or stop: work on ids, re-reading the queue after each call.
    while (!entries.empty()) {
        PcmFeed::Entry& front = entries.front();
        if (front.streamStart < 0 || heard < front.streamStart) {
            break;
        }
        AudioBufferId id = front.id;
        auto frames = static_cast<std::int64_t>(front.samples.size()) / format_.channels;
        if (!front.started) {
            front.started = true;
            if (listener_ != nullptr) {
                listener_->audioBufferDidStart(id);
            }
            if (entries.empty() || entries.front().id != id) {
                continue;
            }
        }
        PcmFeed::Entry& entry = entries.front();
        std::int64_t end = entry.streamStart + frames;
        if (entry.fed < entry.samples.size() || heard < end) {
            break;
        }
        playedFrames_ += frames;
        entries.pop_front();
        if (listener_ != nullptr) {
            listener_->audioBufferDidFinish(id);
        }
    }
    if (entries.empty()) {
        pollTimer_.stop();
    }
}

} // namespace lectorbell::platform::audio
