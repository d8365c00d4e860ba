#include "lectorbell/ReadingSession.hpp"
#include "lectorbell/TextSegmenter.hpp"

#include <benchmark/benchmark.h>
#include <string>

namespace {

using namespace lectorbell;

// Plain prose in wrapped lines and paragraphs, as extracted documents look.
constexpr std::u16string_view plainParagraph =
    u"The committee met on a grey morning to review the year's results. Most of the\n"
    u"members had read the report, and they agreed that the numbers were better than\n"
    u"expected; the new process had cut waiting times by a third. Dr. Lee asked whether\n"
    u"the gains would last, e.g. through the winter, when demand is highest.\n\n";

// The same with citation marks and a link, as a wiki article or a note reads.
constexpr std::u16string_view citedParagraph =
    u"The committee met on a grey morning to review the year's results.[1] Most of the\n"
    u"members had read the [report](https://example.org/report), and they agreed that the\n"
    u"numbers were better than expected;[2] the new process had cut waiting times by a\n"
    u"third. Dr. Lee asked whether the gains would last &mdash; through the winter.\n\n";

// A paragraph repeated to the given size in bytes (two a unit).
std::u16string prose(std::size_t bytes, std::u16string_view paragraph = plainParagraph) {
    std::u16string text;
    text.reserve(bytes / 2 + paragraph.size());
    while (text.size() * 2 < bytes) {
        text += paragraph;
    }
    return text;
}

class SilentEngine final : public SpeechSynthesizing {
public:
    SpeechSynthesizerDelegate* delegate() const override { return delegate_; }
    void setDelegate(SpeechSynthesizerDelegate* d) override { delegate_ = d; }
    void speak(const Uuid&, const std::u16string&, const std::optional<std::string>&,
               float) override {}
    void pause() override {}
    void resume() override {}
    void stopImmediately() override {}

private:
    SpeechSynthesizerDelegate* delegate_ = nullptr;
};

// Time from start to the first chunk handed to the engine: must not grow with the document.
void firstChunkAfterStart(benchmark::State& state) {
    ReadingPayload source;
    source.blocks.push_back(
        {Uuid::random(), prose(static_cast<std::size_t>(state.range(0))), BlockRole::body, {}, 0});
    SilentEngine engine;
    ReadingSession session{engine, 1};
    for (auto _ : state) {
        state.PauseTiming();
        ReadingPayload payload = source;
        std::int64_t generation = session.beginPreparing();
        state.ResumeTiming();
        session.start(std::move(payload), generation, false);
        benchmark::DoNotOptimize(session.chunks().data());
    }
}
// The same with markup in every paragraph, so each window is read for it.
void firstChunkOfCitedText(benchmark::State& state) {
    ReadingPayload source;
    source.blocks.push_back({Uuid::random(),
                             prose(static_cast<std::size_t>(state.range(0)), citedParagraph),
                             BlockRole::body,
                             {},
                             0});
    SilentEngine engine;
    ReadingSession session{engine, 1};
    for (auto _ : state) {
        state.PauseTiming();
        ReadingPayload payload = source;
        std::int64_t generation = session.beginPreparing();
        state.ResumeTiming();
        session.start(std::move(payload), generation, false);
        benchmark::DoNotOptimize(session.chunks().data());
    }
}
BENCHMARK(firstChunkOfCitedText)
    ->Arg(10 << 10)
    ->Arg(1 << 20)
    ->Arg(10 << 20)
    ->Unit(benchmark::kMicrosecond);

BENCHMARK(firstChunkAfterStart)
    ->Arg(10 << 10)
    ->Arg(1 << 20)
    ->Arg(10 << 20)
    ->Unit(benchmark::kMicrosecond);

// Whole segmentation and shaping of plain prose.
void fullSegmentation(benchmark::State& state) {
    const std::u16string text = prose(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(TextSegmenter::chunksForBlock(text, 0, 320));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(text.size() * 2));
}
BENCHMARK(fullSegmentation)->Arg(1 << 20)->Unit(benchmark::kMillisecond);

void sentenceRangesOfProse(benchmark::State& state) {
    const std::u16string text = prose(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(TextSegmenter::sentenceRanges(text));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(text.size() * 2));
}
BENCHMARK(sentenceRangesOfProse)->Arg(1 << 20)->Unit(benchmark::kMillisecond);

} // namespace
