#include "lectorbell/ReadingSession.hpp"

#include "lectorbell/ListeningStats.hpp"

#include <algorithm>
#include <utility>

namespace lectorbell {

namespace {

using Kind = SessionState::Kind;

// Segments blocks lazily until chunk `index` exists or the blocks run out. The first chunk of a
// reading is cut early when `lead` is set.
template <class BlockText>
void extendChunks(std::vector<SpeechChunk>& chunks, std::optional<BlockChunker>& chunker,
                  std::int64_t& nextBlock, std::int64_t blockCount, const BlockText& blockText,
                  std::optional<std::int64_t> lead, std::int64_t maxUTF16, std::int64_t index) {
    while (static_cast<std::int64_t>(chunks.size()) <= index) {
        if (!chunker) {
            if (nextBlock >= blockCount) {
                return;
            }
            chunker.emplace(blockText(nextBlock), nextBlock, maxUTF16);
        }
        const bool firstOfReading = chunks.empty();
        if (!chunker->appendNext(chunks)) {
            chunker.reset();
            ++nextBlock;
            continue;
        }
        if (firstOfReading && lead) {
            std::vector<SpeechChunk> head =
                TextSegmenter::splitLeading(chunks.front(), *lead, TextSegmenter::leadingMinUTF16);
            chunks.erase(chunks.begin());
            chunks.insert(chunks.begin(), head.begin(), head.end());
        }
    }
}

} // namespace

ReadingSession::ReadingSession(SpeechSynthesizing& synth, std::int64_t lookahead,
                               UptimeSeconds uptime)
    : synth_(synth)
    , lookahead_(std::max<std::int64_t>(lookahead, 0))
    , uptime_(uptime ? std::move(uptime) : UptimeSeconds{monotonicUptime}) {
    synth_.setDelegate(this);
}

ReadingSession::~ReadingSession() {
    if (synth_.delegate() == this) {
        synth_.setDelegate(nullptr);
    }
}

std::optional<std::int64_t> ReadingSession::currentChunkIndex() const {
    if (inFlight_.empty()) {
        return std::nullopt;
    }
    return inFlight_.front().index;
}

void ReadingSession::transition(SessionState next) {
    if (!SessionState::canTransition(state_, next)) {
        return;
    }
    state_ = std::move(next);
    if (onStateChange) {
        onStateChange(state_);
    }
}

const std::u16string& ReadingSession::blockText(std::int64_t index) const {
    const auto payloadCount = static_cast<std::int64_t>(payload_->blocks.size());
    if (index < payloadCount) {
        return payload_->blocks[static_cast<std::size_t>(index)].text;
    }
    return appended_[static_cast<std::size_t>(index - payloadCount)].text;
}

void ReadingSession::ensureChunk(std::int64_t index) {
    if (!payload_) {
        return;
    }
    const auto total = static_cast<std::int64_t>(payload_->blocks.size() + appended_.size());
    extendChunks(
        chunks_, chunker_, nextBlockToChunk_, total,
        [this](std::int64_t i) -> const std::u16string& { return blockText(i); }, leadChunkMaxUTF16,
        chunkMaxUTF16, index);
}

bool ReadingSession::isHead(const Uuid& id) const {
    return !inFlight_.empty() && inFlight_.front().id == id;
}

void ReadingSession::fillQueue() {
    if (state_.kind() != Kind::speaking) {
        return;
    }
    const auto limit = static_cast<std::size_t>(lookahead_ + 1);
    while (inFlight_.size() < limit) {
        ensureChunk(nextChunkIndex_);
        if (nextChunkIndex_ >= static_cast<std::int64_t>(chunks_.size())) {
            break;
        }
        Uuid id = Uuid::random();
        inFlight_.push_back({id, nextChunkIndex_});
        const SpeechChunk& chunk = chunks_[static_cast<std::size_t>(nextChunkIndex_)];
        ++nextChunkIndex_;
        synth_.speak(id, chunk.spokenText, voiceIdentifier, rate);
    }
    if (inFlight_.empty() && !moreComing_ && state_.kind() == Kind::speaking && payload_) {
        transition(SessionState::completed(payload_->naturalEndReason()));
    }
}

void ReadingSession::reportPartialHead() {
    if (!inFlight_.empty() && headStartedAt_) {
        const std::int64_t index = inFlight_.front().index;
        if (onListened && index >= 0 && index < static_cast<std::int64_t>(chunks_.size())) {
            const std::u16string& spoken = chunks_[static_cast<std::size_t>(index)].spokenText;
            std::int64_t words = 0;
            // A cut that is not on a character boundary counts nothing.
            if (headSpokenUpTo_ <= static_cast<std::int64_t>(spoken.size()) &&
                UTF16Text::snapDown(headSpokenUpTo_, spoken) == headSpokenUpTo_) {
                words = ListeningStats::countWords(std::u16string_view{spoken}.substr(
                    0, static_cast<std::size_t>(headSpokenUpTo_)));
            }
            onListened(words, uptime_() - *headStartedAt_);
        }
    }
    headStartedAt_.reset();
    headSpokenUpTo_ = 0;
}

void ReadingSession::silence() {
    inFlight_.clear();
    synth_.stopImmediately();
}

std::int64_t ReadingSession::beginPreparing() {
    ++generation_;
    reportPartialHead();
    silence();
    chunker_.reset(); // it reads the payload's text
    payload_.reset();
    transition(SessionState::preparing());
    return generation_;
}

void ReadingSession::start(ReadingPayload payload, std::int64_t generation, bool moreComing) {
    if (generation != generation_ || state_.kind() != Kind::preparing) {
        return;
    }
    payload_ = std::move(payload);
    appended_.clear();
    moreComing_ = moreComing;
    chunks_.clear();
    chunker_.reset();
    firstSpeechReported_ = false;
    nextBlockToChunk_ = 0;
    nextChunkIndex_ = 0;
    ensureChunk(0);
    if (!chunks_.empty()) {
        transition(SessionState::speaking());
        fillQueue();
    } else {
        transition(
            SessionState::failed(ReadingError{ReadingError::Kind::noReadableTextNearCursor}));
    }
}

void ReadingSession::append(std::vector<ReadingBlock> blocks, std::int64_t generation) {
    if (generation != generation_ || !payload_ || !state_.isActive()) {
        return;
    }
    appended_.insert(appended_.end(), std::make_move_iterator(blocks.begin()),
                     std::make_move_iterator(blocks.end()));
    if (state_.kind() == Kind::speaking) {
        fillQueue();
    }
}

void ReadingSession::finishAppending(std::int64_t generation) {
    if (generation != generation_ || !moreComing_) {
        return;
    }
    moreComing_ = false;
    if (state_.kind() == Kind::speaking) {
        fillQueue();
    }
}

void ReadingSession::fail(ReadingError error, std::int64_t generation) {
    if (generation != generation_) {
        return;
    }
    endFailed(std::move(error));
}

void ReadingSession::endFailed(ReadingError error) {
    reportPartialHead();
    silence();
    transition(SessionState::failed(std::move(error)));
}

void ReadingSession::pause() {
    if (state_.kind() != Kind::speaking) {
        return;
    }
    synth_.pause();
    transition(SessionState::paused());
}

void ReadingSession::resume() {
    if (state_.kind() != Kind::paused) {
        return;
    }
    synth_.resume();
    transition(SessionState::speaking());
    fillQueue();
}

void ReadingSession::togglePause() {
    if (state_.kind() == Kind::speaking) {
        pause();
    } else if (state_.kind() == Kind::paused) {
        resume();
    }
}

void ReadingSession::stop() {
    if (!state_.isActive()) {
        return;
    }
    ++generation_;
    reportPartialHead();
    silence();
    transition(SessionState::stopped());
}

void ReadingSession::skip(std::int64_t delta) {
    const Kind kind = state_.kind();
    if ((kind != Kind::speaking && kind != Kind::paused) || inFlight_.empty()) {
        return;
    }
    std::int64_t target = 0;
    if (__builtin_add_overflow(inFlight_.front().index, delta, &target)) {
        target = delta < 0 ? 0 : INT64_MAX;
    }
    target = std::max<std::int64_t>(target, 0);
    ensureChunk(target);
    if (target >= static_cast<std::int64_t>(chunks_.size())) {
        return;
    }
    reportPartialHead();
    silence();
    nextChunkIndex_ = target;
    if (kind == Kind::paused) {
        transition(SessionState::speaking());
    }
    fillQueue();
}

void ReadingSession::reset() {
    if (state_.isActive()) {
        return;
    }
    transition(SessionState::idle());
}

std::vector<std::u16string>
ReadingSession::leadingUtterances(const ReadingPayload& payload, std::int64_t count,
                                  std::optional<std::int64_t> leadChunkMaxUTF16) {
    std::vector<SpeechChunk> chunks;
    std::optional<BlockChunker> chunker;
    std::int64_t nextBlock = 0;
    if (count > 0) {
        extendChunks(
            chunks, chunker, nextBlock, static_cast<std::int64_t>(payload.blocks.size()),
            [&payload](std::int64_t i) -> const std::u16string& {
                return payload.blocks[static_cast<std::size_t>(i)].text;
            },
            leadChunkMaxUTF16, TextSegmenter::defaultMaxUTF16, count - 1);
    }
    std::vector<std::u16string> spoken;
    for (std::size_t i = 0; i < chunks.size() && static_cast<std::int64_t>(i) < count; ++i) {
        spoken.push_back(std::move(chunks[i].spokenText));
    }
    return spoken;
}

void ReadingSession::speechDidStart(const Uuid& id) {
    if (!isHead(id)) {
        return;
    }
    headStartedAt_ = uptime_();
    headSpokenUpTo_ = 0;
    if (!firstSpeechReported_) {
        firstSpeechReported_ = true;
        if (onFirstSpeech) {
            onFirstSpeech(generation_);
        }
    }
}

void ReadingSession::speechWillSpeak(const Uuid& id, UTF16Range utf16Range) {
    if (isHead(id)) {
        headSpokenUpTo_ = std::max(headSpokenUpTo_, utf16Range.location);
    }
}

void ReadingSession::speechDidFinish(const Uuid& id) {
    if (!isHead(id)) {
        return;
    }
    const std::int64_t index = inFlight_.front().index;
    if (onListened && index >= 0 && index < static_cast<std::int64_t>(chunks_.size())) {
        const double seconds = headStartedAt_ ? uptime_() - *headStartedAt_ : 0.0;
        onListened(ListeningStats::countWords(chunks_[static_cast<std::size_t>(index)].spokenText),
                   seconds);
    }
    headStartedAt_.reset();
    headSpokenUpTo_ = 0;
    inFlight_.erase(inFlight_.begin());
    if (state_.kind() == Kind::speaking) {
        fillQueue();
    }
}

void ReadingSession::speechDidCancel(const Uuid& id) {
    auto found = std::find_if(inFlight_.begin(), inFlight_.end(),
                              [&id](const InFlight& entry) { return entry.id == id; });
    if (found != inFlight_.end()) {
        inFlight_.erase(found);
    }
}

void ReadingSession::speechDidFail(const Uuid& id, const ReadingError& error) {
    const bool inFlight = std::any_of(inFlight_.begin(), inFlight_.end(),
                                      [&id](const InFlight& entry) { return entry.id == id; });
    if (inFlight) {
        endFailed(error);
    }
}

} // namespace lectorbell
