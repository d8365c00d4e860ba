#include "cli/ShapingOptions.hpp"
#include "cli/VerbIO.hpp"
#include "cli/Verbs.hpp"
#include "lectorbell/ReadingSession.hpp"
#include "lectorbell/Utf8.hpp"

#include <deque>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

namespace lectorbell::cli {

namespace {

struct ChunksOptions {
    std::int64_t max = TextSegmenter::defaultMaxUTF16;
    std::optional<std::int64_t> lead;
    bool blocks = false;
    ShapingOptions shaping;
    std::string input = "-";
};

// An engine that speaks instantly: it takes the utterances in order and lets the session
// move on, so what the session hands an engine can be printed.
class InstantEngine final : public SpeechSynthesizing {
public:
    SpeechSynthesizerDelegate* delegate() const override { return delegate_; }
    void setDelegate(SpeechSynthesizerDelegate* delegate) override { delegate_ = delegate; }
    void speak(const Uuid& id, const std::u16string&, const std::optional<std::string>&,
               float) override {
        queued_.push_back(id);
        ++spoken_;
    }
    void pause() override {}
    void resume() override {}
    void stopImmediately() override { queued_.clear(); }

    // Plays every queued utterance to its end, including those queued meanwhile.
    void drain() {
        while (!queued_.empty() && delegate_ != nullptr) {
            Uuid id = queued_.front();
            queued_.pop_front();
            delegate_->speechDidStart(id);
            delegate_->speechDidFinish(id);
        }
    }
    std::size_t spoken() const { return spoken_; }

private:
    SpeechSynthesizerDelegate* delegate_ = nullptr;
    std::deque<Uuid> queued_;
    std::size_t spoken_ = 0;
};

// Blocks are separated by lines that hold only a form feed.
std::vector<std::u16string> splitBlocks(std::u16string_view text) {
    std::vector<std::u16string> blocks(1);
    bool firstLine = true;
    std::size_t start = 0;
    for (;;) {
        std::size_t end = std::min(text.find(u'\n', start), text.size());
        std::u16string_view line = text.substr(start, end - start);
        if (line == u"\f" || line == u"\f\r") {
            blocks.emplace_back();
            firstLine = true;
        } else {
            if (!firstLine) {
                blocks.back() += u'\n';
            }
            blocks.back() += line;
            firstLine = false;
        }
        if (end >= text.size()) {
            return blocks;
        }
        start = end + 1;
    }
}

int runChunks(const ChunksOptions& options) {
    if (!applyShapingOptions(options.shaping, std::cerr)) {
        return 2;
    }
    std::optional<std::u16string> text = readTextInput(options.input, std::cerr);
    if (!text) {
        return 1;
    }
    ReadingPayload payload;
    std::vector<std::u16string> texts =
        options.blocks ? splitBlocks(*text) : std::vector<std::u16string>{std::move(*text)};
    for (std::size_t i = 0; i < texts.size(); ++i) {
        payload.blocks.push_back({Uuid::random(), std::move(texts[i]), BlockRole::body,
                                  std::nullopt, static_cast<std::int64_t>(i)});
    }

    InstantEngine engine;
    ReadingSession session{engine, 1};
    session.chunkMaxUTF16 = options.max;
    session.leadChunkMaxUTF16 = options.lead;
    std::size_t printed = 0;
    auto printNew = [&] {
        for (; printed < engine.spoken(); ++printed) {
            const SpeechChunk& chunk = session.chunks().at(printed);
            std::cout << jsonLine({{"block", chunk.blockIndex},
                                   {"text", toUtf8(chunk.text)},
                                   {"spoken", toUtf8(chunk.spokenText)}})
                      << '\n';
        }
    };
    std::int64_t generation = session.beginPreparing();
    session.start(std::move(payload), generation, false);
    while (session.state().kind() == SessionState::Kind::speaking) {
        printNew();
        engine.drain();
    }
    printNew();
    if (session.state().kind() == SessionState::Kind::failed) {
        std::cout << jsonLine({{"error", session.state().error()->userMessage()}}) << '\n';
        return 3;
    }
    return 0;
}

} // namespace

void addChunksVerb(CLI::App& app, VerbOutcome& outcome) {
    auto options = std::make_shared<ChunksOptions>();
    CLI::App* verb = app.add_subcommand(
        "chunks", "Print the speech chunks of a text as a reading session hands them to its voice "
                  "(JSON Lines)");
    verb->add_option("--max", options->max, "Chunk size limit in UTF-16 units")
        ->check(CLI::PositiveNumber);
    verb->add_option("--lead", options->lead,
                     "Cut the first chunk early at a pause within this many UTF-16 units");
    verb->add_flag("--blocks", options->blocks,
                   "Blocks are separated by lines that hold only a form feed");
    addShapingOptions(*verb, options->shaping);
    verb->add_option("FILE", options->input, "UTF-8 text, or - for standard input");
    verb->callback([options, &outcome] { outcome.exitStatus = runChunks(*options); });
}

} // namespace lectorbell::cli
