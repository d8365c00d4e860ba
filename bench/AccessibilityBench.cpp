// Probe times against real applications. Run through scripts/bench-accessibility, which starts a
// private desktop with the applications and passes the points to probe in the environment:
//   LECTORBELL_BENCH_GTK_POINT       a word in a GTK text view
//   LECTORBELL_BENCH_ARTICLE_POINT   a word in a Chromium article
//   LECTORBELL_BENCH_LARGE_POINT     a word in a Chromium page of about 5,000 nodes
#include "platform/linux/atspi/AtspiDesktop.hpp"
#include "sources/AccessibilityExtractor.hpp"

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <string>

namespace {

using namespace lectorbell;

std::optional<ScreenPoint> pointFrom(const char* variable) {
    const char* value = std::getenv(variable);
    if (!value) {
        return std::nullopt;
    }
    std::string text{value};
    std::size_t comma = text.find(',');
    if (comma == std::string::npos) {
        return std::nullopt;
    }
    return ScreenPoint{std::stod(text.substr(0, comma)), std::stod(text.substr(comma + 1))};
}

// One key press's first answer: the application under the point, then the quick lookup. The
// desktop connection lives as long as the application would keep it.
void quickProbe(benchmark::State& state, const char* variable, bool quick) {
    std::optional<ScreenPoint> point = pointFrom(variable);
    if (!point) {
        state.SkipWithError("the point is not set: run scripts/bench-accessibility");
        return;
    }
    static platform::atspi::AtspiDesktop desktop;
    AccessibilityExtractor extractor{desktop, ExtractorConfig{},
                                     WalkContext{steadyClock(), nullptr}};
    bool walkCut = false;
    for (auto _ : state) {
        std::optional<ProcessID> pid = desktop.processAt(*point);
        if (!pid) {
            state.SkipWithError("no window at the point");
            return;
        }
        CursorOutcome outcome = extractor.extractAtCursor(*pid, *point, quick);
        if (!outcome.result) {
            state.SkipWithError("no text at the point");
            return;
        }
        walkCut = outcome.result->walkCut;
        benchmark::DoNotOptimize(outcome);
    }
    state.counters["walkCut"] = walkCut ? 1 : 0;
}

void BM_QuickProbeGtkTextView(benchmark::State& state) {
    quickProbe(state, "LECTORBELL_BENCH_GTK_POINT", true);
}
void BM_QuickProbeChromiumArticle(benchmark::State& state) {
    quickProbe(state, "LECTORBELL_BENCH_ARTICLE_POINT", true);
}
void BM_QuickProbeLargePage(benchmark::State& state) {
    quickProbe(state, "LECTORBELL_BENCH_LARGE_POINT", true);
}
void BM_FullProbeLargePage(benchmark::State& state) {
    quickProbe(state, "LECTORBELL_BENCH_LARGE_POINT", false);
}

constexpr int repetitions = 25;
BENCHMARK(BM_QuickProbeGtkTextView)
    ->Iterations(1)
    ->Repetitions(repetitions)
    ->ReportAggregatesOnly(true)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_QuickProbeChromiumArticle)
    ->Iterations(1)
    ->Repetitions(repetitions)
    ->ReportAggregatesOnly(true)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_QuickProbeLargePage)
    ->Iterations(1)
    ->Repetitions(repetitions)
    ->ReportAggregatesOnly(true)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FullProbeLargePage)
    ->Iterations(1)
    ->Repetitions(10)
    ->ReportAggregatesOnly(true)
    ->Unit(benchmark::kMillisecond);

} // namespace
