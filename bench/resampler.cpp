#include <benchmark/benchmark.h>

#include <ctime>
#include <random>
#include <vector>

#include "platform/Resampler.h"

namespace {

using namespace sonavault;

double cpuSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

/// Noise in the pieces in which the line input and the audio link bring it; the counter is what an
/// hour of it costs.
void resamplesToMono(benchmark::State& state) {
    const AudioFormat format{static_cast<double>(state.range(0)), static_cast<int>(state.range(1)),
                             true};
    constexpr FrameCount kFrames = 4096;
    std::vector<float> samples(static_cast<std::size_t>(kFrames * format.channels));
    std::mt19937 random(1);
    std::uniform_real_distribution<float> noise(-1, 1);
    for (float& sample : samples) sample = noise(random);
    const float* const plane = samples.data();

    auto resampler = Resampler::create(format, 22050);
    if (!resampler) return state.SkipWithError(resampler.error().c_str());
    double frames = 0;
    const double begun = cpuSeconds();
    while (state.KeepRunning()) {
        auto mono = resampler.value()->convert({format, kFrames, &plane});
        benchmark::DoNotOptimize(mono);
        frames += kFrames;
    }
    state.counters["cpu_s_per_hour"] = (cpuSeconds() - begun) / (frames / format.sampleRate) * 3600;
}

}  // namespace

BENCHMARK(resamplesToMono)
    ->ArgNames({"hertz", "channels"})
    ->Args({44100, 2})
    ->Args({48000, 2})
    ->Args({22050, 1})
    ->Args({192000, 8});

BENCHMARK_MAIN();
