// What recording costs: the whole road of a buffer against the resampler and the encoder alone on
// the same samples, and how long it takes to learn what a full day's file holds.

#include <benchmark/benchmark.h>
#include <lame/lame.h>

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <vector>

#include "FullDay.h"
#include "Measuring.h"
#include "platform/Resampler.h"
#include "recorder/AudioPipeline.h"
#include "recorder/SVRecorder.h"

namespace sonavault {
namespace {

constexpr AudioFormat kStereo{44100, 2, true};
constexpr FrameCount kBufferFrames = 4096;
constexpr int kBuffers = 640;  // about a minute
constexpr int kGoodKbps = 24;

/// A clock that keeps step with the samples, so that nothing is padded.
class SteadyClock final : public Clock {
  public:
    WallTime now() const override { return after(WallTime{}, played); }
    double played = 0;
};

std::vector<float> noisyTone() {
    std::vector<float> samples(static_cast<std::size_t>(kBufferFrames) * 2);
    unsigned noise = 1;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        noise = noise * 1664525U + 1013904223U;
        const std::size_t frame = i / 2;
        samples[i] = 0.3F * std::sin(static_cast<float>(frame) * 0.05F) +
                     static_cast<float>(noise >> 16) / 655360.0F - 0.05F;
    }
    return samples;
}

/// The yardstick: the two libraries and nothing else.
void runLibraries(const AudioBufferView& buffer) {
    auto resampler = std::move(Resampler::create(kStereo, 22050).value());
    lame_global_flags* lame = lame_init();
    lame_set_in_samplerate(lame, 22050);
    lame_set_num_channels(lame, 1);
    lame_set_brate(lame, kGoodKbps);
    lame_set_mode(lame, MONO);
    lame_set_quality(lame, 5);
    lame_set_bWriteVbrTag(lame, 0);
    lame_init_params(lame);
    std::vector<unsigned char> out(65536);
    for (int i = 0; i < kBuffers; ++i) {
        const auto mono = resampler->convert(buffer).value();
        benchmark::DoNotOptimize(lame_encode_buffer_ieee_float(
            lame, mono.data(), mono.data(), static_cast<int>(mono.size()), out.data(),
            static_cast<int>(out.size())));
    }
    lame_close(lame);
}

void runPipeline(const AudioBufferView& buffer, const std::filesystem::path& file) {
    NoLog log;
    SteadyClock clock;
    DiskFlusher flusher;
    AudioPipeline pipeline(clock, log, {.level = [](float) {}, .peak = [](float, double) {}});
    pipeline.setActiveSampleRate(22050);
    if (!pipeline.buildResampler(kStereo)) std::abort();
    OpenDay day{.encoder = LAMEEncoder::create(22050, 1, kGoodKbps, log),
                .framesWritten = 0,
                .wallClockAnchor = clock.now()};
    if (!day.encoder->open(file, flusher)) std::abort();
    pipeline.begin(std::move(day));
    for (int i = 0; i < kBuffers; ++i) {
        clock.played += static_cast<double>(kBufferFrames) / kStereo.sampleRate;
        pipeline.handleSourceBuffer(buffer);
    }
    pipeline.end()->close();
}

void wholeRoadOfABuffer(benchmark::State& state) {
    const auto samples = noisyTone();
    const float* plane = samples.data();
    const AudioBufferView buffer{kStereo, kBufferFrames, &plane};
    const OwnFolder folder;
    const auto file = folder / "recording.mp3";
    double libraries = 0;
    double pipeline = 0;
    while (state.KeepRunning()) {
        libraries += secondsOf([&] { runLibraries(buffer); });
        std::filesystem::remove(file);
        const double road = secondsOf([&] { runPipeline(buffer, file); });
        pipeline += road;
        state.SetIterationTime(road);
    }
    state.counters["of_resampler_and_encoder"] = pipeline / libraries;
    state.counters["percent_of_a_core"] =
        100 * pipeline / static_cast<double>(state.iterations()) /
        (kBuffers * static_cast<double>(kBufferFrames) / kStereo.sampleRate);
}
BENCHMARK(wholeRoadOfABuffer)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(5);

void existingFramesOfAFullDay(benchmark::State& state) {
    const FullDay day;
    FrameCount frames = 0;
    while (state.KeepRunning()) frames = existingFramesAt(day.file(), 22050);
    if (frames != 86400LL * 22050) state.SkipWithError("the day's length is wrong");
}
BENCHMARK(existingFramesOfAFullDay)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace sonavault

BENCHMARK_MAIN();
