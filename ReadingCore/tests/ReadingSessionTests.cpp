#include "lectorbell/ReadingSession.hpp"

#include <functional>
#include <gtest/gtest.h>

namespace lectorbell {
namespace {

using Kind = SessionState::Kind;

// Records every call; the test fires the callbacks itself, in any order.
class RecordingSynth final : public SpeechSynthesizing {
public:
    struct Spoken {
        Uuid id;
        std::u16string text;
    };

    SpeechSynthesizerDelegate* delegate() const override { return delegate_; }
    void setDelegate(SpeechSynthesizerDelegate* d) override { delegate_ = d; }
    void speak(const Uuid& id, const std::u16string& text, const std::optional<std::string>&,
               float) override {
        spoken.push_back({id, text});
    }
    void pause() override { ++pauses; }
    void resume() override { ++resumes; }
    void stopImmediately() override { ++stops; }

    std::vector<Spoken> spoken;
    int pauses = 0;
    int resumes = 0;
    int stops = 0;

private:
    SpeechSynthesizerDelegate* delegate_ = nullptr;
};

ReadingBlock block(std::u16string text) {
    return {Uuid::random(), std::move(text), BlockRole::body, std::nullopt, 0};
}

ReadingPayload payloadOf(std::vector<std::u16string> texts) {
    ReadingPayload payload;
    for (auto& text : texts) {
        payload.blocks.push_back(block(std::move(text)));
    }
    return payload;
}

struct Harness {
    explicit Harness(std::int64_t lookahead = 1)
        : session(synth, lookahead, [this] { return now; }) {
        session.onStateChange = [this](const SessionState& s) { states.push_back(s.kind()); };
        session.onListened = [this](std::int64_t w, double s) { listened.emplace_back(w, s); };
        session.onFirstSpeech = [this](std::int64_t g) { firstSpeech.push_back(g); };
    }

    std::int64_t startWith(std::vector<std::u16string> texts, bool moreComing = false) {
        std::int64_t generation = session.beginPreparing();
        session.start(payloadOf(std::move(texts)), generation, moreComing);
        return generation;
    }
    std::u16string spokenText(std::size_t i) const { return synth.spoken.at(i).text; }
    Uuid id(std::size_t i) const { return synth.spoken.at(i).id; }
    void finish(std::size_t i) {
        session.speechDidStart(id(i));
        session.speechDidFinish(id(i));
    }

    double now = 100.0;
    RecordingSynth synth;
    ReadingSession session;
    std::vector<Kind> states;
    std::vector<std::pair<std::int64_t, double>> listened;
    std::vector<std::int64_t> firstSpeech;
};

TEST(SessionState, TransitionTable) {
    const SessionState all[] = {SessionState::completed(ReadingEndReason::manuallyStopped),
                                SessionState::failed(ReadingError{ReadingError::Kind::secureField}),
                                SessionState::idle(),
                                SessionState::preparing(),
                                SessionState::speaking(),
                                SessionState::paused(),
                                SessionState::stopped()};
    const char* table[] = {"0011000", "0011000", "0011000", "1111101",
                           "1101011", "0101101", "0011000"};
    for (int from = 0; from < 7; ++from) {
        for (int to = 0; to < 7; ++to) {
            EXPECT_EQ(SessionState::canTransition(all[from], all[to]), table[from][to] == '1')
                << all[from].name() << " -> " << all[to].name();
        }
    }
    EXPECT_EQ(SessionState::preparing().statusText(), "Locating text\u2026");
    EXPECT_EQ(SessionState::failed(ReadingError{ReadingError::Kind::noReadableTextNearCursor})
                  .statusText(),
              "No readable text near cursor");
    EXPECT_EQ(SessionState::completed(ReadingEndReason::visibleTextEnded).statusText(),
              "End of visible text");
    EXPECT_TRUE(SessionState::paused().isActive());
    EXPECT_FALSE(SessionState::stopped().isActive());
}

TEST(ReadingSession, LookaheadBoundsWhatIsQueued) {
    struct Case {
        std::int64_t lookahead;
        std::vector<std::u16string> blocks;
        std::size_t speaks;
    };
    const Case cases[] = {
        {1, {u"One. Two. Three."}, 2},
        {1, {u"Only one."}, 1},
        {0, {u"One. Two."}, 1},
        {-3, {u"One. Two."}, 1},
        {3, {u"One.", u"Two.", u"Three. Four. Five."}, 4},
    };
    for (const Case& c : cases) {
        Harness h{c.lookahead};
        h.startWith(c.blocks);
        EXPECT_EQ(h.synth.spoken.size(), c.speaks) << c.lookahead;
        EXPECT_EQ(h.session.state().kind(), Kind::speaking);
    }
}

TEST(ReadingSession, UnspeakablePayloadFails) {
    for (std::u16string text : {u"", u"   ", u"\u2022 \u2022  \u25AA"}) {
        Harness h;
        h.startWith({text});
        EXPECT_EQ(h.session.state(),
                  SessionState::failed(ReadingError{ReadingError::Kind::noReadableTextNearCursor}));
        EXPECT_TRUE(h.synth.spoken.empty());
    }
}

TEST(ReadingSession, StaleOrMisplacedCallsChangeNothing) {
    Harness h;
    h.session.start(payloadOf({u"Hi."}), h.session.generation(), false); // idle
    EXPECT_EQ(h.session.state().kind(), Kind::idle);
    std::int64_t old = h.session.beginPreparing();
    h.session.pause(); // nothing to pause while preparing
    EXPECT_EQ(h.session.state().kind(), Kind::preparing);
    std::int64_t current = h.session.beginPreparing();
    h.session.start(payloadOf({u"Hi."}), old, false);
    EXPECT_TRUE(h.synth.spoken.empty());
    h.session.start(payloadOf({u"Hi. There."}), current, false);
    h.session.stop();
    EXPECT_EQ(h.session.generation(), current + 1);
    h.session.start(payloadOf({u"Again."}), current, false);
    EXPECT_EQ(h.session.state().kind(), Kind::stopped);
    h.session.stop(); // stop when not active
    EXPECT_EQ(h.session.generation(), current + 1);
}

TEST(ReadingSession, RunsToCompletionInOrder) {
    Harness h;
    h.startWith({u"One. Two.", u"Three."});
    h.finish(0);
    h.finish(1);
    h.finish(2);
    ASSERT_EQ(h.synth.spoken.size(), 3U);
    EXPECT_EQ(h.spokenText(2), u"Three.");
    EXPECT_EQ(h.session.state(), SessionState::completed(ReadingEndReason::availableContentEnded));
    EXPECT_EQ(h.firstSpeech, std::vector<std::int64_t>{1});
    EXPECT_EQ(h.states, (std::vector<Kind>{Kind::preparing, Kind::speaking, Kind::completed}));
}

TEST(ReadingSession, CallbacksForOtherThanTheHeadAreIgnored) {
    Harness h;
    h.startWith({u"One. Two. Three."});
    h.session.speechDidFinish(h.id(1)); // not the head
    EXPECT_EQ(h.session.currentChunkIndex(), 0);
    EXPECT_EQ(h.synth.spoken.size(), 2U);
    h.session.speechDidCancel(h.id(1));
    h.session.speechDidFinish(Uuid::random());
    h.finish(0);
    // The cancelled second chunk is gone; the third is queued next.
    EXPECT_EQ(h.synth.spoken.size(), 3U);
    EXPECT_EQ(h.spokenText(2), u"Three.");
    EXPECT_TRUE(h.listened.size() == 1 && h.listened[0].first == 1);
}

TEST(ReadingSession, Skip) {
    Harness h;
    h.startWith({u"One. Two. Three."});
    h.session.skip(-1); // replays chunk 0
    ASSERT_EQ(h.synth.spoken.size(), 4U);
    EXPECT_EQ(h.spokenText(2), u"One.");
    EXPECT_EQ(h.synth.stops, 2); // beginPreparing and the skip
    h.session.skip(5);           // past the end
    EXPECT_EQ(h.synth.spoken.size(), 4U);
    h.session.pause();
    h.session.skip(2);
    EXPECT_EQ(h.session.state().kind(), Kind::speaking);
    EXPECT_EQ(h.spokenText(4), u"Three.");
    EXPECT_EQ(h.session.currentChunkIndex(), 2);
    h.session.skip(1); // on the last chunk
    EXPECT_EQ(h.synth.spoken.size(), 5U);
}

TEST(ReadingSession, MoreComingWaitsForAppends) {
    Harness h;
    std::int64_t generation = h.startWith({u"First."}, true);
    h.finish(0);
    EXPECT_EQ(h.session.state().kind(), Kind::speaking);
    h.session.append({block(u"Second.")}, generation);
    ASSERT_EQ(h.synth.spoken.size(), 2U);
    h.finish(1);
    EXPECT_EQ(h.session.state().kind(), Kind::speaking);
    h.session.append({block(u"Stale.")}, generation - 1);
    h.session.finishAppending(generation);
    EXPECT_EQ(h.session.state(), SessionState::completed(ReadingEndReason::availableContentEnded));
    EXPECT_EQ(h.synth.spoken.size(), 2U);
}

TEST(ReadingSession, ListeningTime) {
    Harness h;
    h.startWith({u"Alpha beta gamma delta. Next one."});
    h.session.speechDidStart(h.id(0));
    h.now += 2.0;
    h.session.speechDidFinish(h.id(0));
    ASSERT_EQ(h.listened.size(), 1U);
    EXPECT_EQ(h.listened[0], (std::pair<std::int64_t, double>{4, 2.0}));

    // Cut off: only words before the last reported word start count.
    h.session.speechDidStart(h.id(1));
    h.session.speechWillSpeak(h.id(1), {5, 4});
    h.session.speechWillSpeak(h.id(1), {0, 4}); // earlier report does not move it back
    h.now += 0.5;
    h.session.stop();
    ASSERT_EQ(h.listened.size(), 2U);
    EXPECT_EQ(h.listened[1], (std::pair<std::int64_t, double>{1, 0.5}));
    // Nothing sounded: nothing reported.
    h.session.beginPreparing();
    EXPECT_EQ(h.listened.size(), 2U);
}

TEST(ReadingSession, AFailedUtteranceEndsTheReadingWithOnlyHeardWordsCounted) {
    using Listened = std::vector<std::pair<std::int64_t, double>>;
    const ReadingError unavailable{ReadingError::Kind::speechUnavailable};
    struct Case {
        const char* name;
        // Drives the reading of "Alpha beta gamma delta." and "Next one." up to the failure and
        // returns the id that fails.
        std::function<Uuid(Harness&)> run;
        Listened listened;
    };
    const Case cases[] = {
        {"cut inside the head: two words heard, the third only begun",
         [](Harness& h) {
             h.session.speechDidStart(h.id(0));
             h.session.speechWillSpeak(h.id(0), {11, 5});
             h.now += 1.5;
             return h.id(0);
         },
         {{2, 1.5}}},
        {"the queued utterance fails before the head has sounded",
         [](Harness& h) { return h.id(1); },
         {}},
        {"the head finished, then its successor fails",
         [](Harness& h) {
             h.session.speechDidStart(h.id(0));
             h.now += 2.0;
             h.session.speechDidFinish(h.id(0));
             return h.id(1);
         },
         {{4, 2.0}}},
        {"while paused",
         [](Harness& h) {
             h.session.pause();
             return h.id(0);
         },
         {}},
    };
    for (const Case& c : cases) {
        Harness h;
        h.startWith({u"Alpha beta gamma delta. Next one."});
        const Uuid failing = c.run(h);
        const std::size_t spoken = h.synth.spoken.size();
        h.session.speechDidFail(failing, unavailable);
        EXPECT_EQ(h.session.state(), SessionState::failed(unavailable)) << c.name;
        EXPECT_EQ(h.listened, c.listened) << c.name;
        EXPECT_EQ(h.synth.spoken.size(), spoken) << c.name << ": nothing more is spoken";
        EXPECT_EQ(h.synth.stops, 2) << c.name << ": beginPreparing, then the failure";
        EXPECT_FALSE(h.session.currentChunkIndex()) << c.name;
    }
}

TEST(ReadingSession, FailuresOfUtterancesNotInFlightAreIgnored) {
    Harness h;
    h.startWith({u"One. Two. Three."});
    const Uuid cancelled = h.id(1);
    h.session.speechDidCancel(cancelled);
    for (const Uuid& id : {cancelled, Uuid::random()}) {
        h.session.speechDidFail(id, ReadingError{ReadingError::Kind::speechUnavailable});
    }
    EXPECT_EQ(h.session.state().kind(), Kind::speaking);
    h.finish(0);
    EXPECT_EQ(h.spokenText(2), u"Three.");
}

TEST(ReadingSession, PauseResumeAndReset) {
    Harness h;
    h.startWith({u"One. Two."});
    h.session.togglePause();
    EXPECT_EQ(h.session.state().kind(), Kind::paused);
    h.session.reset(); // no effect while paused
    EXPECT_EQ(h.session.state().kind(), Kind::paused);
    h.session.togglePause();
    EXPECT_EQ(h.synth.pauses, 1);
    EXPECT_EQ(h.synth.resumes, 1);
    h.session.fail(ReadingError{ReadingError::Kind::appNotResponding}, h.session.generation());
    EXPECT_EQ(h.session.state().kind(), Kind::failed);
    h.session.reset();
    EXPECT_EQ(h.session.state().kind(), Kind::idle);
}

TEST(ReadingSession, LeadingCutAndLeadingUtterances) {
    const std::u16string text =
        u"When the first sentence is long, the session cuts it early so that speech can start on a "
        u"short piece. Then it goes on.";
    Harness h;
    h.session.leadChunkMaxUTF16 = 80;
    h.startWith({text});
    EXPECT_EQ(h.spokenText(0), u"When the first sentence is long,");
    ReadingPayload payload = payloadOf({text});
    EXPECT_EQ(ReadingSession::leadingUtterances(payload, 2, 80),
              (std::vector<std::u16string>{h.spokenText(0), h.spokenText(1)}));
    EXPECT_EQ(ReadingSession::leadingUtterances(payload, 5, std::nullopt).size(), 2U);
    EXPECT_TRUE(ReadingSession::leadingUtterances(payload, 0, 80).empty());
}

TEST(ReadingSession, DetachesFromItsEngine) {
    RecordingSynth synth;
    {
        ReadingSession session{synth, 1};
        EXPECT_EQ(synth.delegate(), &session);
    }
    EXPECT_EQ(synth.delegate(), nullptr);
}

} // namespace
} // namespace lectorbell
