// Speech shaping throughput. Figures are per UTF-16 byte of input (two bytes a unit).

#include "lectorbell/NumberSpeech.hpp"
#include "lectorbell/Pronunciations.hpp"
#include "lectorbell/SpeechCleanup.hpp"
#include "lectorbell/TextSegmenter.hpp"
#include "lectorbell/Utf8.hpp"

#include <benchmark/benchmark.h>
#include <fstream>
#include <random>
#include <sstream>
#include <string>

namespace {

using namespace lectorbell;

std::u16string filled(std::u16string_view piece, std::size_t units) {
    std::u16string text;
    text.reserve(units + piece.size());
    while (text.size() < units) {
        text += piece;
    }
    text.resize(units);
    return text;
}

// Prose as it comes from a page: curly quotes and dashes, but nothing that needs cleanup and no
// digits.
const std::u16string_view prose =
    u"The river bent twice before it reached the town, and on the second bend the old mill "
    u"still turned. \u201CWe\u2019ll walk there,\u201D she said \u2014 and they did, slowly, "
    u"talking about nothing much. ";

// A chat or notes page: links, markdown, citations, emoji and a pipe table.
const std::u16string_view markup =
    u"## Notes \U0001F4DD\n**Bold** and *italic* with __under__ marks, see "
    u"https://www.example.com/path/to/page?q=1#frag and [12][citation needed].\n"
    u"- item one \u2705\n- item_two \U0001F525\U0001F525\n> quoted line!!!\n"
    u"| Name | Age | City |\n|---|---|---|\n| Ann | 34 | Oslo |\n";

const std::u16string_view numbers =
    u"Revenue rose to $5M in 2023 (up from 3.2M), costs fell -5% to 10K, the range was "
    u"3\u20137 \u00B12 units, a loss of (1,200) and 4 bn in assets. ";

void setBytes(benchmark::State& state, std::size_t units) {
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                            static_cast<std::int64_t>(units * sizeof(char16_t)));
}

using Shaping = std::u16string (*)(std::u16string_view);

// One shaping step over text made of `piece` repeated to state.range(0) units.
void shape(benchmark::State& state, Shaping step, std::u16string_view piece) {
    const std::u16string text = filled(piece, static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(step(text));
    }
    setBytes(state, text.size());
}

std::u16string cleanAndNormalize(std::u16string_view text) {
    return NumberSpeech::normalize(SpeechCleanup::clean(text));
}

BENCHMARK_CAPTURE(shape, cleanProse, SpeechCleanup::clean, prose)->Arg(320)->Arg(1 << 16);
BENCHMARK_CAPTURE(shape, cleanAndNormalizeProse, cleanAndNormalize, prose)->Arg(320)->Arg(1 << 16);
BENCHMARK_CAPTURE(shape, cleanMarkup, SpeechCleanup::clean, markup)->Arg(320)->Arg(1 << 16);
BENCHMARK_CAPTURE(shape, normalizeNumbers, NumberSpeech::normalize, numbers)
    ->Arg(320)
    ->Arg(1 << 16);

// A project README of 16 KiB: badge rows, an HTML header, links, code blocks and tables. Cut
// at a line break from the fixtures the verb tests read.
const std::u16string& readme() {
    static const std::u16string text = [] {
        std::string bytes;
        for (const char* name : {"tessel.md", "parcel.md"}) {
            std::ifstream file{std::string{LECTORBELL_READMES} + "/" + name};
            std::ostringstream content;
            content << file.rdbuf();
            bytes += content.str();
        }
        bytes.resize(bytes.rfind('\n', std::size_t{16} * 1024) + 1);
        return fromUtf8(bytes);
    }();
    return text;
}

void cleanReadme(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(SpeechCleanup::clean(readme()));
    }
    setBytes(state, readme().size());
}
BENCHMARK(cleanReadme)->Unit(benchmark::kMicrosecond);

// The whole road of a README through the segmenter: block, paragraphs, sentences, spoken forms.
void chunkReadme(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(TextSegmenter::chunksForBlock(readme(), 0, 320));
    }
    setBytes(state, readme().size());
}
BENCHMARK(chunkReadme)->Unit(benchmark::kMicrosecond);

// Made-up words of 3 to 10 letters, plus a few that occur in the prose.
std::vector<PronunciationRule> dictionary(std::size_t count) {
    std::mt19937 random{42};
    std::uniform_int_distribution<int> length{3, 10};
    std::uniform_int_distribution<int> letter{0, 25};
    std::vector<PronunciationRule> rules;
    const std::u16string_view present[] = {u"river", u"old mill", u"town", u"bend", u"slowly"};
    for (std::size_t i = 0; i < count; ++i) {
        std::u16string word;
        if (i % (count / 5) == 0) {
            word = present[i / (count / 5) % 5];
        } else {
            for (int n = length(random); n > 0; --n) {
                word.push_back(static_cast<char16_t>(u'a' + letter(random)));
            }
        }
        rules.push_back(PronunciationRule{Uuid::random(), word, u"said " + word});
    }
    return rules;
}

void applyPronunciations(benchmark::State& state) {
    Pronunciations::setRules(dictionary(static_cast<std::size_t>(state.range(0))));
    const std::u16string chunk = filled(prose, 320);
    for (auto _ : state) {
        benchmark::DoNotOptimize(Pronunciations::apply(chunk));
    }
    setBytes(state, chunk.size());
    Pronunciations::setRules({});
}
BENCHMARK(applyPronunciations)->Arg(50)->Arg(5000)->Unit(benchmark::kMicrosecond);

void compilePronunciations(benchmark::State& state) {
    const auto rules = dictionary(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        Pronunciations::setRules(rules);
    }
    Pronunciations::setRules({});
}
BENCHMARK(compilePronunciations)->Arg(5000)->Unit(benchmark::kMillisecond);

} // namespace
