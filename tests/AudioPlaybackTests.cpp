// Plays real speech through the Qt audio output to a PulseAudio null sink and records the sink's
// monitor: run under scripts/with-null-sink (see CMakeLists.txt).
#include "TestEnvironment.hpp"
#include "platform/linux/audio/QtAudioOutput.hpp"
#include "platform/linux/espeak/EspeakSynthesizer.hpp"
#include "speech/SystemSpeechEngine.hpp"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QTimer>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>

namespace lectorbell {
namespace {

using platform::PcmSamples;

// Forwards to the real output and keeps a copy of everything scheduled: what should be heard.
class TeeAudioOutput final : public platform::AudioOutput {
public:
    explicit TeeAudioOutput(platform::AudioOutput& out)
        : out_{out} {}
    void setListener(platform::AudioOutputListener* l) override { out_.setListener(l); }
    std::optional<std::string> start(platform::PcmFormat f) override { return out_.start(f); }
    std::optional<platform::PcmFormat> format() const override { return out_.format(); }
    platform::AudioBufferId schedule(PcmSamples samples) override {
        scheduled.insert(scheduled.end(), samples.begin(), samples.end());
        return out_.schedule(std::move(samples));
    }
    void pause(platform::PauseBoundary b) override { out_.pause(b); }
    void resume() override { out_.resume(); }
    void stop() override { out_.stop(); }
    std::int64_t playedFrames() const override { return out_.playedFrames(); }
    bool isBusy() const override { return out_.isBusy(); }
    bool isFlowing() const override { return out_.isFlowing(); }
    const std::optional<std::string>& failure() const override { return out_.failure(); }

    PcmSamples scheduled;

private:
    platform::AudioOutput& out_;
};

class FinishWatcher final : public SpeechSynthesizerDelegate {
public:
    void speechDidStart(const Uuid& /*id*/) override {
        if (started++ == 0) {
            firstSoundMs = sinceSpeak.nsecsElapsed() / 1e6;
        }
    }
    void speechDidFinish(const Uuid& id) override {
        finished.push_back(id);
        if (finished.size() == expected) {
            QCoreApplication::exit(0);
        }
    }
    void speechDidCancel(const Uuid& /*id*/) override {}
    void speechDidFail(const Uuid& /*id*/, const ReadingError& /*error*/) override {
        QCoreApplication::exit(2);
    }
    void speechWillSpeak(const Uuid& /*id*/, UTF16Range /*range*/) override { ++words; }

    std::size_t expected = 0;
    QElapsedTimer sinceSpeak;
    double firstSoundMs = 0;
    int started = 0;
    int words = 0;
    std::vector<Uuid> finished;
};

constexpr int loud = 200;

// Index of the first and one past the last sample above the silence level.
std::pair<std::size_t, std::size_t> loudSpan(const PcmSamples& s) {
    std::size_t first = 0;
    while (first < s.size() && std::abs(int{s[first]}) <= loud) {
        ++first;
    }
    std::size_t end = s.size();
    while (end > first && std::abs(int{s[end - 1]}) <= loud) {
        --end;
    }
    return {first, end};
}

// Offset, from `from`, of the middle of the longest silent run in [from, to).
std::size_t longestSilenceMiddle(const PcmSamples& s, std::size_t from, std::size_t to) {
    std::size_t best = 0;
    std::size_t bestAt = 0;
    std::size_t run = 0;
    for (std::size_t i = from; i < to; ++i) {
        run = std::abs(int{s[i]}) <= loud ? run + 1 : 0;
        if (run > best) {
            best = run;
            bestAt = i - run / 2;
        }
    }
    return bestAt - from;
}

TEST(AudioPlayback, TwoQueuedChunksArriveInOrderWithNothingAddedBetweenThem) {
    const char* sink = std::getenv("LECTORBELL_TEST_SINK");
    if (sink == nullptr) {
        LECTORBELL_SKIP_TEST("needs the private PulseAudio of scripts/with-null-sink");
    }
    platform::espeak::EspeakSynthesizer synth{{"en-US"}};
    const platform::PcmFormat format = synth.format();

    QProcess recorder;
    recorder.start("parec",
                   {"-d", QString{sink} + ".monitor", "--raw", "--format=s16le", "--channels=1",
                    "--rate=" + QString::number(format.sampleRate), "--latency-msec=10"});
    ASSERT_TRUE(recorder.waitForStarted(5000)) << "parec (pulseaudio-utils) is needed";

    platform::audio::QtAudioOutput device;
    TeeAudioOutput output{device};
    ASSERT_EQ(output.start(format), std::nullopt);
    speech::SystemSpeechEngine engine{synth, output};
    FinishWatcher watcher;
    engine.setDelegate(&watcher);

    // As in the application, the output has been open for a while when reading starts.
    QElapsedTimer warmUp;
    warmUp.start();
    while (!device.isFlowing() && warmUp.elapsed() < 5000) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    ASSERT_TRUE(device.isFlowing());

    // A short chunk, then a long one: the order shows in where the pause between them falls.
    watcher.expected = 2;
    QTimer::singleShot(0, [&] {
        watcher.sinceSpeak.start();
        engine.speak(Uuid::random(), u"Hello there.", std::nullopt, 0.72F);
        engine.speak(Uuid::random(),
                     u"This second chunk is clearly much longer than the first one was.",
                     std::nullopt, 0.72F);
    });
    QTimer::singleShot(20000, [] { QCoreApplication::exit(1); });
    ASSERT_EQ(QCoreApplication::exec(), 0) << "speech did not finish in time";
    EXPECT_EQ(watcher.started, 2);
    EXPECT_GT(watcher.words, 10);

    // Let the recorder catch the tail, then stop it.
    QElapsedTimer tail;
    tail.start();
    while (tail.elapsed() < 300) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    recorder.terminate();
    recorder.waitForFinished(5000);
    QByteArray raw = recorder.readAllStandardOutput();
    PcmSamples heard(static_cast<std::size_t>(raw.size()) / 2);
    std::memcpy(heard.data(), raw.constData(), heard.size() * 2);

    auto [heardFirst, heardEnd] = loudSpan(heard);
    auto [sentFirst, sentEnd] = loudSpan(output.scheduled);
    ASSERT_LT(heardFirst, heardEnd) << "nothing but silence was recorded";
    const double msPerFrame = 1000.0 / format.sampleRate;
    const double addedMs =
        (static_cast<double>(heardEnd - heardFirst) - static_cast<double>(sentEnd - sentFirst)) *
        msPerFrame;
    const double pauseOffsetMs =
        (static_cast<double>(longestSilenceMiddle(heard, heardFirst, heardEnd)) -
         static_cast<double>(longestSilenceMiddle(output.scheduled, sentFirst, sentEnd))) *
        msPerFrame;
    std::cout << "first sound reported " << watcher.firstSoundMs << " ms after speak; recorded "
              << heard.size() * msPerFrame << " ms; speech spans "
              << (heardEnd - heardFirst) * msPerFrame << " ms heard vs "
              << (sentEnd - sentFirst) * msPerFrame << " ms scheduled; silence added " << addedMs
              << " ms; pause between chunks off by " << pauseOffsetMs << " ms\n";
    EXPECT_LT(std::abs(addedMs), 20.0) << "silence was added between or inside the chunks";
    EXPECT_LT(std::abs(pauseOffsetMs), 20.0) << "the pause between the chunks moved";
}

// Counts what the output reports; leaves the event loop on every failure.
struct ListenerLog final : platform::AudioOutputListener {
    void audioBufferDidStart(platform::AudioBufferId /*id*/) override { ++starts; }
    void audioBufferDidFinish(platform::AudioBufferId /*id*/) override {
        ++finishes;
        if (finishes == exitAfterFinishes) {
            QCoreApplication::exit(0);
        }
    }
    void audioOutputDidFail(const std::string& message) override {
        failures.push_back(message);
        QCoreApplication::exit(0);
    }
    int starts = 0;
    int finishes = 0;
    int exitAfterFinishes = 0;
    std::vector<std::string> failures;
};

// Runs the event loop until something exits it, or `ms` have passed (exit code 1).
int execFor(int ms) {
    QTimer limit;
    limit.setSingleShot(true);
    QObject::connect(&limit, &QTimer::timeout, [] { QCoreApplication::exit(1); });
    limit.start(ms);
    return QCoreApplication::exec();
}

void runEventsFor(int ms) {
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < ms) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
}

TEST(AudioPlayback, NoSoundServerGivesAClearErrorAtOnce) {
    if (std::getenv("LECTORBELL_EXPECT_NO_AUDIO") == nullptr) {
        LECTORBELL_SKIP_TEST("run with PULSE_SERVER pointing nowhere (see AudioTests.cmake)");
    }
    QElapsedTimer clock;
    clock.start();
    platform::audio::QtAudioOutput output;
    EXPECT_EQ(output.start({22050, 1}), std::optional<std::string>{"No audio output device"});
    EXPECT_LT(clock.elapsed(), 5000);

    // Buffers scheduled without a device are reported lost, once, so no reading waits on them.
    ListenerLog log;
    output.setListener(&log);
    output.schedule(PcmSamples(100, 1000));
    output.schedule(PcmSamples(100, 1000));
    EXPECT_TRUE(log.failures.empty()) << "never from inside schedule";
    EXPECT_EQ(execFor(5000), 0);
    runEventsFor(100);
    EXPECT_EQ(log.failures, std::vector<std::string>{"No audio output device"});
    EXPECT_EQ(log.starts, 0);
    EXPECT_EQ(log.finishes, 0);
    EXPECT_FALSE(output.isBusy());
}

// The private server of scripts/with-null-sink, killed as a crashing server dies and started
// again as it comes back.
class PrivateSoundServer {
public:
    static bool available() { return !dir().isEmpty(); }

    static void kill() {
        std::ifstream pidFile{(dir() + "/pulse/pid").toStdString()};
        pid_t pid = 0;
        ASSERT_TRUE(pidFile >> pid);
        ASSERT_EQ(::kill(pid, SIGKILL), 0);
    }
    static void restart() {
        ASSERT_TRUE(
            QProcess::startDetached(qEnvironmentVariable("LECTORBELL_NULL_SINK_SERVER"), {dir()}));
        auto answers = [] {
            QProcess pactl;
            pactl.setStandardOutputFile(QProcess::nullDevice());
            pactl.setStandardErrorFile(QProcess::nullDevice());
            pactl.start("pactl", {"info"});
            return pactl.waitForFinished(5000) && pactl.exitCode() == 0;
        };
        QElapsedTimer clock;
        clock.start();
        while (!answers()) {
            ASSERT_LT(clock.elapsed(), 5000) << "the sound server did not come back";
            runEventsFor(50);
        }
    }

private:
    static QString dir() { return qEnvironmentVariable("LECTORBELL_TEST_PULSE_DIR"); }
};

TEST(AudioPlayback, ALostDeviceDropsWhatWasNotHeardAndComesBackWithTheServer) {
    ASSERT_TRUE(PrivateSoundServer::available())
        << "run under scripts/with-null-sink (see tests/AudioTests.cmake)";
    platform::audio::QtAudioOutput output;
    ListenerLog log;
    output.setListener(&log);
    const platform::PcmFormat format{22050, 1};
    ASSERT_EQ(output.start(format), std::nullopt);
    QElapsedTimer warmUp;
    warmUp.start();
    while (!output.isFlowing() && warmUp.elapsed() < 5000) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    ASSERT_TRUE(output.isFlowing());

    // Five seconds of sound in half-second buffers; the server dies one second in.
    constexpr int buffers = 10;
    for (int i = 0; i < buffers; ++i) {
        output.schedule(PcmSamples(static_cast<std::size_t>(format.sampleRate / 2), 1000));
    }
    QTimer::singleShot(1000, [] { PrivateSoundServer::kill(); });
    ASSERT_EQ(execFor(15000), 0) << "the failure was not reported";
    runEventsFor(500);
    EXPECT_EQ(log.failures, std::vector<std::string>{"No audio output device"});
    EXPECT_GE(log.finishes, 1) << "what was heard before the failure is reported";
    EXPECT_LT(log.finishes, buffers) << "buffers that were never heard were reported played";
    EXPECT_LE(log.starts - log.finishes, 1) << "only the buffer sounding when the server died";
    EXPECT_EQ(output.failure(), std::optional<std::string>{"No audio output device"});
    EXPECT_FALSE(output.isBusy());

    // Once the server is back, scheduling opens the device again (Qt reconnects within 3 s).
    PrivateSoundServer::restart();
    QElapsedTimer clock;
    clock.start();
    const int finishedBefore = log.finishes;
    log.exitAfterFinishes = finishedBefore + 1;
    while (log.finishes == finishedBefore && clock.elapsed() < 15000) {
        output.schedule(PcmSamples(static_cast<std::size_t>(format.sampleRate / 10), 1000));
        execFor(5000);
        if (log.finishes == finishedBefore) {
            runEventsFor(500);
        }
    }
    EXPECT_EQ(log.finishes, finishedBefore + 1) << "the output did not come back";
    EXPECT_EQ(output.failure(), std::nullopt);
}

} // namespace
} // namespace lectorbell

int main(int argc, char** argv) {
    QCoreApplication app{argc, argv};
    testing::InitGoogleTest(&argc, argv);
    const int result = RUN_ALL_TESTS();
    // Qt 6.4 tears its PulseAudio context down at exit without locking the main loop, which now
    // and then aborts inside libpulse after every test has passed. The result is known by then:
    // leave without running the global destructors.
    std::fflush(nullptr);
    std::_Exit(result);
}
