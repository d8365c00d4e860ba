#include "OCRTestLines.hpp"
#include "lectorbell/ReadingOrderEngine.hpp"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <random>

namespace {

using namespace lectorbell;

// A long capture as a recogniser reports it, in shuffled order: pages stacked down the screen,
// each with a title and two columns of five-line paragraphs, every line with its words.
std::vector<OCRLine> syntheticLines(std::size_t count) {
    const std::u16string words[] = {
        u"The committee met on a grey morning to review the",
        u"results of the year and most of the members had read",
        u"the report before they arrived at the office on time",
        u"and they agreed that the numbers were better than",
        u"expected by everyone.",
    };
    std::vector<OCRLine> lines;
    double pageTop = 0;
    while (lines.size() < count) {
        lines.push_back(
            test::ocrLine(u"Annual Report of the Harbour Board", 40, pageTop + 10, 20, 10));
        for (double columnX : {40.0, 400.0}) {
            double y = pageTop + 50;
            for (int line = 0; line < 40 && lines.size() < count; ++line) {
                lines.push_back(test::ocrLine(words[line % 5], columnX, y, 12, 6));
                y += line % 5 == 4 ? 30 : 16;
            }
        }
        pageTop += 900;
    }
    lines.resize(count);
    std::shuffle(lines.begin(), lines.end(), std::mt19937{42});
    return lines;
}

void BM_Layout(benchmark::State& state) {
    const auto lines = syntheticLines(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(ReadingOrderEngine::layout(lines));
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_Layout)->Arg(500)->Arg(2000)->Arg(8000)->Unit(benchmark::kMillisecond)->Complexity();

void BM_Read(benchmark::State& state) {
    const auto lines = syntheticLines(static_cast<std::size_t>(state.range(0)));
    // A word in the right column of the first page.
    const ScreenPoint pointer{460, 56};
    for (auto _ : state) {
        benchmark::DoNotOptimize(ReadingOrderEngine::read(lines, pointer));
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_Read)->Arg(500)->Arg(2000)->Arg(8000)->Unit(benchmark::kMillisecond)->Complexity();

} // namespace
