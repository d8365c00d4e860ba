// The built-in voice: how fast espeak-ng renders, and how soon after `speak` the first sound is
// handed to the audio output (the goal is under 30 ms for a 20-word chunk).
#include "platform/AudioOutput.hpp"
#include "platform/linux/espeak/EspeakSynthesizer.hpp"
#include "speech/SystemSpeechEngine.hpp"

#include <benchmark/benchmark.h>
#include <chrono>

namespace {

using namespace lectorbell;
using Clock = std::chrono::steady_clock;

// 20 words of ordinary prose, the size of a short speech chunk.
constexpr std::u16string_view twentyWords =
    u"The committee met on Tuesday to review the proposal, and most members agreed that the "
    u"new schedule would work well.";

// Notes when the first buffer arrives; plays nothing.
class FirstBufferOutput final : public platform::AudioOutput {
public:
    void setListener(platform::AudioOutputListener* /*listener*/) override {}
    std::optional<std::string> start(platform::PcmFormat format) override {
        format_ = format;
        return {};
    }
    std::optional<platform::PcmFormat> format() const override { return format_; }
    platform::AudioBufferId schedule(platform::PcmSamples samples) override {
        if (!first) {
            first = Clock::now();
        }
        benchmark::DoNotOptimize(samples.data());
        return ++count;
    }
    void pause(platform::PauseBoundary /*boundary*/) override {}
    void resume() override {}
    void stop() override { first.reset(); }
    std::int64_t playedFrames() const override { return 0; }
    bool isBusy() const override { return false; }
    bool isFlowing() const override { return true; }
    const std::optional<std::string>& failure() const override { return failure_; }

    std::optional<Clock::time_point> first;
    std::optional<std::string> failure_;
    std::optional<platform::PcmFormat> format_;
    platform::AudioBufferId count = 0;
};

void espeakRenderTwentyWords(benchmark::State& state) {
    platform::espeak::EspeakSynthesizer synth{{"en-US"}};
    const float rate = static_cast<float>(state.range(0)) / 100.0F;
    double audioSeconds = 0;
    for (auto _ : state) {
        platform::SynthesizedSpeech speech =
            synth.render(twentyWords, synth.defaultVoiceId(), rate).value();
        audioSeconds +=
            platform::secondsOf(platform::frameCount(speech.samples, speech.format), speech.format);
    }
    // Seconds of speech rendered per second of work: the real-time factor.
    state.counters["realTimeFactor"] =
        benchmark::Counter(audioSeconds, benchmark::Counter::kIsRate);
}
BENCHMARK(espeakRenderTwentyWords)->Arg(50)->Arg(72)->Unit(benchmark::kMillisecond);

void speakToFirstBuffer(benchmark::State& state) {
    platform::espeak::EspeakSynthesizer synth{{"en-US"}};
    FirstBufferOutput output;
    speech::SystemSpeechEngine engine{synth, output};
    for (auto _ : state) {
        Clock::time_point before = Clock::now();
        engine.speak(Uuid::random(), std::u16string{twentyWords}, std::nullopt, 0.5F);
        state.SetIterationTime(std::chrono::duration<double>(*output.first - before).count());
        engine.stopImmediately();
    }
}
BENCHMARK(speakToFirstBuffer)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
