#include "lectorbell/UTF16Text.hpp"

#include <benchmark/benchmark.h>
#include <string>

namespace {

using lectorbell::UTF16Range;
namespace UTF16Text = lectorbell::UTF16Text;

// Prose mixed with the characters that make snapping work: accents written as combining marks,
// emoji with skin tones and ZWJ sequences, and flags.
std::u16string longText(std::size_t units) {
    const std::u16string piece =
        u"The cafe\u0301 opened at nine. \U0001F44B\U0001F3FD Everyone came: "
        u"\U0001F468\u200D\U0001F469\u200D\U0001F467 and \U0001F1FA\U0001F1E6 flags. ";
    std::u16string text;
    text.reserve(units + piece.size());
    while (text.size() < units) {
        text += piece;
    }
    return text;
}

void snapDownAcrossText(benchmark::State& state) {
    const std::u16string text = longText(static_cast<std::size_t>(state.range(0)));
    const auto length = static_cast<std::int64_t>(text.size());
    std::int64_t offset = 1;
    for (auto _ : state) {
        benchmark::DoNotOptimize(UTF16Text::snapDown(offset, text));
        offset = (offset * 7919 + 13) % length;
    }
}
BENCHMARK(snapDownAcrossText)->Arg(1 << 10)->Arg(1 << 16)->Arg(1 << 22);

void substringAcrossText(benchmark::State& state) {
    const std::u16string text = longText(static_cast<std::size_t>(state.range(0)));
    const auto length = static_cast<std::int64_t>(text.size());
    std::int64_t offset = 1;
    for (auto _ : state) {
        benchmark::DoNotOptimize(UTF16Text::substring(text, UTF16Range{offset, 320}));
        offset = (offset * 7919 + 13) % length;
    }
}
BENCHMARK(substringAcrossText)->Arg(1 << 10)->Arg(1 << 16)->Arg(1 << 22);

} // namespace
