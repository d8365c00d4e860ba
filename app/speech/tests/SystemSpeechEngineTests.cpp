#include "RecordingAudioOutput.hpp"
#include "lectorbell/ReadingSession.hpp"
#include "platform/linux/espeak/EspeakSynthesizer.hpp"
#include "speech/SystemSpeechEngine.hpp"

#include <cmath>
#include <gtest/gtest.h>
#include <sstream>

namespace lectorbell::speech {
namespace {

using testing::RecordingAudioOutput;

// A voice at 1,000 frames per second: 30 silent frames, then 100 loud frames per
// space-separated word, each word event at its first loud frame. It fails on the text "broken".
class ScriptedSynthesizer final : public platform::PlatformSynthesizer {
public:
    static constexpr std::int64_t lead = 30;
    static constexpr std::int64_t wordFrames = 100;

    std::vector<platform::PlatformVoice> voices() const override {
        return {{"voice.default", "Default", "en-US", "Default"}};
    }
    std::string defaultVoiceId() const override { return "voice.default"; }
    platform::PcmFormat format() const override { return {1000, 1}; }
    std::optional<platform::SynthesizedSpeech>
    render(std::u16string_view text, const std::string& voiceId, float rate) override {
        requests.push_back({voiceId, rate});
        if (text == u"broken") {
            return std::nullopt;
        }
        platform::SynthesizedSpeech speech{format(), platform::PcmSamples(lead, 0), {}};
        std::int64_t start = 0;
        auto n = static_cast<std::int64_t>(text.size());
        for (std::int64_t i = 0; i <= n; ++i) {
            if (i == n || text[static_cast<std::size_t>(i)] == u' ') {
                if (i > start) {
                    speech.words.push_back(
                        {static_cast<std::int64_t>(speech.samples.size()), {start, i - start}});
                    speech.samples.insert(speech.samples.end(), wordFrames,
                                          static_cast<std::int16_t>(1000 + i));
                }
                start = i + 1;
            }
        }
        return speech;
    }

    struct Request {
        std::string voiceId;
        float rate = 0;
    };
    std::vector<Request> requests;
};

// Writes every callback as one line, e.g. "start 1", "word 1 4+3", "finish 1", "cancel 2".
class RecordingDelegate final : public SpeechSynthesizerDelegate {
public:
    void speechDidStart(const Uuid& id) override { log.push_back("start " + name(id)); }
    void speechDidFinish(const Uuid& id) override {
        log.push_back("finish " + name(id));
        if (onFinish) {
            onFinish(id);
        }
    }
    void speechDidCancel(const Uuid& id) override { log.push_back("cancel " + name(id)); }
    void speechDidFail(const Uuid& id, const ReadingError& error) override {
        log.push_back("fail " + name(id) + " " + error.userMessage());
    }
    void speechWillSpeak(const Uuid& id, UTF16Range range) override {
        std::ostringstream line;
        line << "word " << name(id) << " " << range.location << "+" << range.length;
        log.push_back(line.str());
    }

    std::string name(const Uuid& id) {
        for (std::size_t i = 0; i < ids.size(); ++i) {
            if (ids[i] == id) {
                return std::to_string(i + 1);
            }
        }
        return "?";
    }
    Uuid next() { return ids.emplace_back(Uuid::random()); }

    std::vector<Uuid> ids;
    std::vector<std::string> log;
    std::function<void(const Uuid&)> onFinish;
};

class SystemSpeechEngineTest : public ::testing::Test {
protected:
    SystemSpeechEngineTest() {
        output.start(synth.format());
        engine.setDelegate(&delegate);
    }
    Uuid speak(const std::u16string& text, float rate = 0.5F) {
        Uuid id = delegate.next();
        engine.speak(id, text, std::nullopt, rate);
        return id;
    }

    ScriptedSynthesizer synth;
    RecordingAudioOutput output;
    SystemSpeechEngine engine{synth, output};
    RecordingDelegate delegate;
};

using Log = std::vector<std::string>;

TEST_F(SystemSpeechEngineTest, ReportsWhatIsHeardWhenItIsHeard) {
    speak(u"one two");
    speak(u"three");
    EXPECT_EQ(delegate.log, Log{}) << "nothing is reported before it plays";

    output.play(1); // the 2 ms kept before the first word
    EXPECT_EQ(delegate.log, (Log{"start 1"}));
    output.play(2);
    EXPECT_EQ(delegate.log, (Log{"start 1", "word 1 0+3"}));
    output.play(ScriptedSynthesizer::wordFrames);
    EXPECT_EQ(delegate.log.back(), "word 1 4+3");
    output.playAll();
    EXPECT_EQ(delegate.log, (Log{"start 1", "word 1 0+3", "word 1 4+3", "finish 1", "start 2",
                                 "word 2 0+5", "finish 2"}));
}

TEST_F(SystemSpeechEngineTest, QueuesUtterancesBackToBackTrimmingOnlyTheFirstLead) {
    speak(u"one two");
    speak(u"three");
    platform::PcmSamples heard = output.stream();
    // The first utterance starts on its first word; the second keeps the voice's own lead
    // (its pause between sentences), and nothing else is added between them.
    const std::int64_t kept = 2; // 2 ms at 1,000 frames per second
    ASSERT_EQ(static_cast<std::int64_t>(heard.size()), kept + 2 * ScriptedSynthesizer::wordFrames +
                                                           ScriptedSynthesizer::lead +
                                                           ScriptedSynthesizer::wordFrames);
    EXPECT_EQ(heard[kept - 1], 0);
    EXPECT_NE(heard[kept], 0);
    EXPECT_EQ(heard[static_cast<std::size_t>(kept + 2 * ScriptedSynthesizer::wordFrames)], 0);
}

TEST_F(SystemSpeechEngineTest, PauseLetsTheSoundingWordFinish) {
    speak(u"one two three");
    output.play(50); // inside "one"
    engine.pause();
    output.play(1000);
    EXPECT_EQ(delegate.log, (Log{"start 1", "word 1 0+3"})) << "held after \"one\"";
    engine.resume();
    output.play(1);
    EXPECT_EQ(delegate.log.back(), "word 1 4+3");
    EXPECT_EQ(output.calls, (std::vector<std::string>{"pause(endOfBuffer)", "resume"}));
}

TEST_F(SystemSpeechEngineTest, StopCancelsEveryDroppedUtteranceAndIgnoresLateSound) {
    speak(u"one two");
    speak(u"three");
    speak(u"four");
    output.play(50);
    engine.stopImmediately();
    EXPECT_EQ(delegate.log, (Log{"start 1", "word 1 0+3", "cancel 1", "cancel 2", "cancel 3"}));
    EXPECT_FALSE(output.isBusy());

    // A new utterance after the stop is spoken from its first word.
    speak(u"five");
    output.playAll();
    EXPECT_EQ(delegate.log.back(), "finish 4");
    EXPECT_EQ(std::count(delegate.log.begin(), delegate.log.end(), "finish 1"), 0);
}

TEST_F(SystemSpeechEngineTest, StopWhilePausedSpeaksAgainAfterwards) {
    speak(u"one two");
    output.play(10);
    engine.pause();
    engine.stopImmediately();
    speak(u"three");
    output.playAll();
    EXPECT_EQ(delegate.log.back(), "finish 2");
}

TEST_F(SystemSpeechEngineTest, ADelegateMaySpeakTheNextUtteranceFromFinish) {
    int remaining = 2;
    delegate.onFinish = [&](const Uuid&) {
        if (remaining-- > 0) {
            speak(u"again");
        }
    };
    speak(u"first");
    output.playAll();
    EXPECT_EQ(delegate.log, (Log{"start 1", "word 1 0+5", "finish 1", "start 2", "word 2 0+5",
                                 "finish 2", "start 3", "word 3 0+5", "finish 3"}));
}

TEST_F(SystemSpeechEngineTest, TextWithNothingToSayStillStartsAndFinishes) {
    speak(u"");
    speak(u"   ");
    output.playAll();
    EXPECT_EQ(delegate.log, (Log{"start 1", "finish 1", "start 2", "finish 2"}));
}

TEST_F(SystemSpeechEngineTest, AFailedRenderFailsInItsTurnAfterWhatCameBeforeIsHeard) {
    speak(u"one");
    speak(u"broken");
    speak(u"three");
    EXPECT_EQ(delegate.log, Log{}) << "never reported from inside speak";
    output.playAll();
    EXPECT_EQ(delegate.log, (Log{"start 1", "word 1 0+3", "finish 1",
                                 "fail 2 Selected voice is unavailable", "cancel 3"}));
    EXPECT_FALSE(output.isBusy()) << "nothing of the third utterance plays";
}

TEST_F(SystemSpeechEngineTest, ALostDeviceFailsTheOldestUtteranceAndComesBackForTheNext) {
    speak(u"one two");
    speak(u"three");
    output.failAfter = 52; // inside "one", after the 2 ms kept before it
    output.playAll();
    EXPECT_EQ(delegate.log,
              (Log{"start 1", "word 1 0+3", "fail 1 No audio output device", "cancel 2"}));
    EXPECT_EQ(output.failure(), std::optional<std::string>{"No audio output device"});

    delegate.log.clear();
    speak(u"four");
    EXPECT_EQ(output.failure(), std::nullopt);
    output.playAll();
    EXPECT_EQ(delegate.log, (Log{"start 3", "word 3 0+4", "finish 3"}));
}

TEST_F(SystemSpeechEngineTest, ALostDeviceEndsTheReadingCountingOnlyHeardWords) {
    // The session's clock is the sound played, in seconds.
    ReadingSession session{engine, 1,
                           [this] { return static_cast<double>(output.playedFrames()) / 1000.0; }};
    std::vector<std::pair<std::int64_t, double>> listened;
    session.onListened = [&](std::int64_t words, double seconds) {
        listened.emplace_back(words, seconds);
    };
    ReadingPayload payload;
    payload.blocks.push_back(
        {Uuid::random(), u"One two three. Four five six seven.", BlockRole::body, {}, 0});
    session.start(std::move(payload), session.beginPreparing(), false);

    // The first chunk is 2 + 3 * 100 frames; the second 30 + 4 * 100. Fail inside "six".
    output.failAfter = 302 + 30 + 250;
    output.playAll();
    EXPECT_EQ(session.state(),
              SessionState::failed(ReadingError{ReadingError::Kind::audioOutputUnavailable}));
    ASSERT_EQ(listened.size(), 2U);
    EXPECT_EQ(listened[0].first, 3);
    EXPECT_NEAR(listened[0].second, 0.302, 1e-9);
    EXPECT_EQ(listened[1].first, 2) << "\"six\" had only begun";
    EXPECT_NEAR(listened[1].second, 0.280, 1e-9);
}

TEST_F(SystemSpeechEngineTest, ClampsRatesAndUsesTheDefaultVoiceWhenNoneIsGiven) {
    for (float rate : {-1.0F, 0.3F, 2.0F, std::nanf("")}) {
        speak(u"x", rate);
    }
    ASSERT_EQ(synth.requests.size(), 4U);
    EXPECT_EQ(synth.requests[0].rate, 0.0F);
    EXPECT_EQ(synth.requests[1].rate, 0.3F);
    EXPECT_EQ(synth.requests[2].rate, 1.0F);
    EXPECT_EQ(synth.requests[3].rate, 0.5F);
    EXPECT_EQ(synth.requests[0].voiceId, "voice.default");
    engine.speak(delegate.next(), u"x", std::string{"voice.other"}, 0.5F);
    EXPECT_EQ(synth.requests.back().voiceId, "voice.other");
}

TEST(SystemSpeechEngineWithEspeak, FollowsTheWordsOfARealVoice) {
    platform::espeak::EspeakSynthesizer synth{{"en-US"}};
    RecordingAudioOutput output;
    output.start(synth.format());
    SystemSpeechEngine engine{synth, output};
    RecordingDelegate delegate;
    engine.setDelegate(&delegate);
    std::u16string text = u"Na\u00efve \U0001F600 readers enjoy caf\u00e9s.";
    engine.speak(delegate.next(), text, std::nullopt, 0.5F);
    output.playAll();
    ASSERT_GE(delegate.log.size(), 3U);
    EXPECT_EQ(delegate.log.front(), "start 1");
    EXPECT_EQ(delegate.log[1], "word 1 0+5");
    EXPECT_EQ(delegate.log.back(), "finish 1");
    EXPECT_NE(std::find(delegate.log.begin(), delegate.log.end(), "word 1 9+7"), delegate.log.end())
        << "\"readers\" starts after the two units of the emoji";
    EXPECT_NE(std::find(delegate.log.begin(), delegate.log.end(), "word 1 23+5"),
              delegate.log.end());
}

} // namespace
} // namespace lectorbell::speech
