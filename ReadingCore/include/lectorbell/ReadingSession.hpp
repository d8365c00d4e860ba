#pragma once

#include "lectorbell/ReadingModel.hpp"
#include "lectorbell/SessionState.hpp"
#include "lectorbell/SpeechSynthesizing.hpp"
#include "lectorbell/TextSegmenter.hpp"
#include "lectorbell/Uptime.hpp"

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace lectorbell {

// Speaks one reading at a time: segments the payload lazily into chunks, keeps `lookahead`
// utterances queued behind the one sounding, follows the engine's callbacks and reports state
// changes and listening time. Single-threaded: its owner calls it, and the engine calls it back,
// on one thread.
class ReadingSession final : public SpeechSynthesizerDelegate {
public:
    // Monotonic uptime in seconds; injected so tests control time.
    using UptimeSeconds = Uptime;

    ReadingSession(SpeechSynthesizing& synth, std::int64_t lookahead,
                   UptimeSeconds uptime = monotonicUptime);
    ~ReadingSession() override;
    ReadingSession(const ReadingSession&) = delete;
    ReadingSession& operator=(const ReadingSession&) = delete;

    // Called after every accepted state change.
    std::function<void(const SessionState&)> onStateChange;
    // Once per reading, when its first utterance starts to sound.
    std::function<void(std::int64_t generation)> onFirstSpeech;
    // When an utterance finishes or is cut off: words heard and seconds it sounded.
    std::function<void(std::int64_t words, double seconds)> onListened;
    // Passed unchanged to every speak.
    std::optional<std::string> voiceIdentifier;
    float rate = 0.5F;
    // When set, the first chunk of a reading is cut early so speech starts on a short piece.
    std::optional<std::int64_t> leadChunkMaxUTF16;
    // The size limit of each chunk; readings use the default, tools may choose another.
    std::int64_t chunkMaxUTF16 = TextSegmenter::defaultMaxUTF16;

    const SessionState& state() const { return state_; }
    std::int64_t generation() const { return generation_; }
    const std::optional<ReadingPayload>& payload() const { return payload_; }
    const std::vector<SpeechChunk>& chunks() const { return chunks_; }
    std::int64_t lookahead() const { return lookahead_; }
    bool moreComing() const { return moreComing_; }
    std::optional<std::int64_t> currentChunkIndex() const;

    std::int64_t beginPreparing();
    void start(ReadingPayload payload, std::int64_t generation, bool moreComing);
    void append(std::vector<ReadingBlock> blocks, std::int64_t generation);
    void finishAppending(std::int64_t generation);
    void fail(ReadingError error, std::int64_t generation);
    void pause();
    void resume();
    void togglePause();
    void stop();
    void skip(std::int64_t delta);
    void reset();

    // The spoken texts of the first `count` chunks a session would produce for the payload.
    static std::vector<std::u16string>
    leadingUtterances(const ReadingPayload& payload, std::int64_t count,
                      std::optional<std::int64_t> leadChunkMaxUTF16);

    void speechDidStart(const Uuid& id) override;
    void speechDidFinish(const Uuid& id) override;
    void speechDidCancel(const Uuid& id) override;
    // Ends the reading with `error` when `id` is in flight; words count only up to the last word
    // heard.
    void speechDidFail(const Uuid& id, const ReadingError& error) override;
    void speechWillSpeak(const Uuid& id, UTF16Range utf16Range) override;

private:
    struct InFlight {
        Uuid id;
        std::int64_t index = 0;
    };

    void transition(SessionState next);
    void ensureChunk(std::int64_t index);
    void fillQueue();
    void reportPartialHead();
    void endFailed(ReadingError error);
    void silence();
    bool isHead(const Uuid& id) const;
    const std::u16string& blockText(std::int64_t index) const;

    SpeechSynthesizing& synth_;
    std::int64_t lookahead_;
    UptimeSeconds uptime_;
    SessionState state_ = SessionState::idle();
    std::int64_t generation_ = 0;
    std::optional<ReadingPayload> payload_;
    std::optional<double> headStartedAt_;
    std::int64_t headSpokenUpTo_ = 0;
    std::vector<SpeechChunk> chunks_;
    std::int64_t nextBlockToChunk_ = 0;
    std::optional<BlockChunker> chunker_;
    std::int64_t nextChunkIndex_ = 0;
    std::vector<InFlight> inFlight_;
    bool firstSpeechReported_ = false;
    // A deque keeps each block where it is while a chunker reads its text.
    std::deque<ReadingBlock> appended_;
    bool moreComing_ = false;
};

} // namespace lectorbell
