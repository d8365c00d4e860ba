// `lectorbell read [--voice ID] [--pace P] [--wav OUT.wav] [--verbose] [FILE|-]`: reads a text
// aloud through a reading session and the system voice, as the tray application does.

#include "cli/ShapingOptions.hpp"
#include "cli/SystemVoice.hpp"
#include "cli/VerbIO.hpp"
#include "cli/Verbs.hpp"
#include "lectorbell/PacePreset.hpp"
#include "lectorbell/ReadingSession.hpp"
#include "platform/Platform.hpp"
#include "platform/WavFileAudioOutput.hpp"
#include "speech/SystemSpeechEngine.hpp"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>
#include <csignal>
#include <cstdio>
#include <iostream>
#include <memory>

namespace lectorbell::cli {

namespace {

constexpr int exitNoReadableText = 3;
constexpr int exitNoAudioDevice = 5;
constexpr int exitInterrupted = 130;
constexpr int maxWarmUpMs = 3000;

struct ReadOptions {
    std::string voice;
    std::string pace = "normal";
    std::string wav;
    bool verbose = false;
    ShapingOptions shaping;
    std::string input = "-";
};

volatile std::sig_atomic_t interrupted = 0;

extern "C" void onInterrupt(int /*signal*/) {
    interrupted = 1;
}

// Sits between the engine and the session to print each chunk as it starts to sound.
class ChunkPrinter final : public SpeechSynthesizerDelegate {
public:
    explicit ChunkPrinter(ReadingSession& session)
        : session_{session} {}

    void speechDidStart(const Uuid& id) override {
        session_.speechDidStart(id);
        std::optional<std::int64_t> index = session_.currentChunkIndex();
        if (index && *index != lastPrinted_) {
            lastPrinted_ = *index;
            const SpeechChunk& chunk = session_.chunks().at(static_cast<std::size_t>(*index));
            std::cout << "chunk " << *index << ": " << jsonString(chunk.spokenText) << std::endl;
        }
    }
    void speechDidFinish(const Uuid& id) override { session_.speechDidFinish(id); }
    void speechDidCancel(const Uuid& id) override { session_.speechDidCancel(id); }
    void speechDidFail(const Uuid& id, const ReadingError& error) override {
        session_.speechDidFail(id, error);
    }
    void speechWillSpeak(const Uuid& id, UTF16Range range) override {
        session_.speechWillSpeak(id, range);
    }

private:
    ReadingSession& session_;
    std::int64_t lastPrinted_ = -1;
};

ReadingPayload payloadOf(std::u16string text) {
    ReadingPayload payload;
    payload.blocks.push_back({Uuid::random(), std::move(text), BlockRole::body, std::nullopt, 0});
    return payload;
}

int runRead(platform::Platform& platform, const ReadOptions& options) {
    if (!applyShapingOptions(options.shaping, std::cerr)) {
        return 2;
    }
    std::optional<std::u16string> text = readTextInput(options.input, std::cerr);
    if (!text) {
        return 1;
    }
    ReadingPayload payload = payloadOf(std::move(*text));
    if (ReadingSession::leadingUtterances(payload, 1, std::nullopt).empty()) {
        std::cerr << "lectorbell: "
                  << ReadingError{ReadingError::Kind::noReadableTextNearCursor}.userMessage()
                  << '\n';
        return exitNoReadableText;
    }

    // From here on Ctrl-C stops the reading (at once, if it comes before speech starts).
    interrupted = 0;
    auto previousHandler = std::signal(SIGINT, onInterrupt);
    struct RestoreHandler {
        void (*handler)(int);
        ~RestoreHandler() { std::signal(SIGINT, handler); }
    } restore{previousHandler};

    static int argc = 1;
    static char name[] = "lectorbell";
    static char* argv[] = {name, nullptr};
    QCoreApplication application{argc, argv};

    std::unique_ptr<platform::PlatformSynthesizer> systemVoice =
        openSystemVoice(platform, std::cerr);
    if (!systemVoice) {
        return exitVoiceUnavailable;
    }
    platform::PlatformSynthesizer& synth = *systemVoice;
    std::unique_ptr<platform::AudioOutput> output;
    platform::AudioOutput* device = nullptr;
    if (options.wav.empty()) {
        output = platform.audioOutput();
        device = output.get();
    } else {
        output = std::make_unique<platform::WavFileAudioOutput>(
            options.wav, [&application](std::function<void()> work) {
                QTimer::singleShot(0, &application, std::move(work));
            });
    }
    if (std::optional<std::string> error = output->start(synth.format())) {
        std::cerr << "lectorbell: " << *error << '\n';
        return options.wav.empty() ? exitNoAudioDevice : 1;
    }

    // A sound server whose output was idle can take a second or more to start a new stream;
    // wait for it (the tray application opens its output at launch instead), so that the
    // reading's timings are those of the sound.
    QElapsedTimer warmUp;
    warmUp.start();
    while (device != nullptr && !device->isFlowing() && warmUp.elapsed() < maxWarmUpMs &&
           interrupted == 0) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }

    speech::SystemSpeechEngine engine{synth, *output};
    ReadingSession session{engine, 1};
    ChunkPrinter printer{session};
    if (options.verbose) {
        engine.setDelegate(&printer);
    }
    if (!options.voice.empty()) {
        session.voiceIdentifier = options.voice;
    }
    session.rate = rate(pacePresetFromRawValue(options.pace).value_or(PacePreset::normal));

    std::int64_t words = 0;
    double seconds = 0;
    session.onListened = [&](std::int64_t heard, double duration) {
        words += heard;
        seconds += duration;
    };
    session.onStateChange = [](const SessionState& state) {
        std::cout << "state: " << state.name() << " (" << state.statusText() << ")" << std::endl;
        if (!state.isActive()) {
            QCoreApplication::exit(0);
        }
    };

    QTimer interruptWatch;
    QObject::connect(&interruptWatch, &QTimer::timeout, [&session] {
        if (interrupted != 0) {
            session.stop();
        }
    });
    interruptWatch.start(50);

    std::int64_t generation = session.beginPreparing();
    session.start(std::move(payload), generation, false);
    if (session.state().isActive()) {
        QCoreApplication::exec();
    }

    std::printf("listened: %lld words in %.1f s\n", static_cast<long long>(words), seconds);
    std::fflush(stdout);
    const SessionState& state = session.state();
    if (state.kind() == SessionState::Kind::failed && output->failure()) {
        // The output's own words say more than the session's "voice is unavailable".
        std::cerr << "lectorbell: " << *output->failure() << '\n';
        return device != nullptr ? exitNoAudioDevice : 1;
    }
    switch (state.kind()) {
    case SessionState::Kind::completed:
        return 0;
    case SessionState::Kind::stopped:
        return exitInterrupted;
    case SessionState::Kind::failed:
        std::cerr << "lectorbell: " << state.error()->userMessage() << '\n';
        return state.error()->kind() == ReadingError::Kind::speechUnavailable ? exitVoiceUnavailable
                                                                              : exitNoReadableText;
    default:
        return 1;
    }
}

} // namespace

void addReadVerb(CLI::App& app, VerbOutcome& outcome, platform::Platform& platform) {
    auto options = std::make_shared<ReadOptions>();
    CLI::App* verb = app.add_subcommand(
        "read", "Read a text aloud with the system voice; prints the reading's state changes");
    verb->add_option("--voice", options->voice, "Voice id (see `lectorbell voices`)");
    verb->add_option("--pace", options->pace, "Reading pace")->check(CLI::IsMember(paceNames()));
    verb->add_option("--wav", options->wav,
                     "Write the speech to this WAV file instead of playing it");
    verb->add_flag("--verbose", options->verbose, "Also print each chunk as it starts to sound");
    addShapingOptions(*verb, options->shaping);
    verb->add_option("FILE", options->input, "UTF-8 text, or - for standard input");
    verb->callback([options, &outcome, &platform] {
        outcome.leaveWithoutTeardown = options->wav.empty();
        outcome.exitStatus = runRead(platform, *options);
    });
}

} // namespace lectorbell::cli
