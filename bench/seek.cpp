// How soon a day is heard at 23:30 once it is open: from Play to the first 1,024 samples ready for
// the output, against decoding of the frames before that place alone.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "SoundingDay.h"
#include "platform/Mp3Decoder.h"
#include "review/PlaybackFeeder.h"
#include "review/PlaybackFile.h"

namespace sonavault {
namespace {

constexpr FrameCount kFirstSamples = 1024;
constexpr std::int64_t kFramesOfASecond = 28;

const SoundingDay& theDay() {
    static const SoundingDay day;
    return day;
}

double secondsToDecode(std::int64_t from, std::int64_t to) {
    BareDecoder decoder;
    std::ifstream in(theDay().file(), std::ios::binary);
    decoder.read(in, from, to - from);
    return secondsOf([&decoder] { decoder.decode(); });
}

/// Presses Play at about 23:30 again and again, after `before` each time.
void playAtHalfPastEleven(benchmark::State& state,
                          const std::function<void(PlaybackFeeder&)>& before) {
    auto file = std::move(PlaybackFile::open(theDay().file()).value());
    if (!file.source()->index->await({})) std::abort();
    PlaybackFeeder feeder;
    double preRoll = 0;
    std::vector<double> all;
    FrameCount position = 84600LL * kRateOfADay + 100;
    for ([[maybe_unused]] auto _ : state) {
        before(feeder);
        position += kRateOfADay;  // not where the last one left off
        const double took = secondsOf([&] {
            if (!file.openAfresh()) std::abort();
            const auto sound = std::make_shared<AudioOutputSound>(file.info().sampleRate);
            feeder.feed(file.source(), position, sound);
            while (sound->ready() < kFirstSamples) std::this_thread::yield();
        });
        state.SetIterationTime(took);
        all.push_back(took);
        const std::int64_t frame = position / kSamplesOfAFrame;
        preRoll += secondsToDecode(frame - Mp3Decoder::kPreRollFrames, frame + 2);
    }
    state.counters["pre_roll_alone_ms"] =
        benchmark::Counter(preRoll * 1000, benchmark::Counter::kAvgIterations);
    // A busy machine lets the feeding thread wait for its turn now and then.
    std::sort(all.begin(), all.end());
    state.counters["median_ms"] = all[all.size() / 2] * 1000;
    state.counters["longest_ms"] = all.back() * 1000;
}

void playAfterStop(benchmark::State& state) {
    playAtHalfPastEleven(state, [](PlaybackFeeder& feeder) {
        feeder.stop();
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    });
}
BENCHMARK(playAfterStop)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(200);

void jumpWhilePlaying(benchmark::State& state) {
    playAtHalfPastEleven(state, [](PlaybackFeeder&) {});
}
BENCHMARK(jumpWhilePlaying)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(200);

void playOfADayThatGrows(benchmark::State& state) {
    playAtHalfPastEleven(state,
                         [](PlaybackFeeder&) { growByFrames(theDay().file(), kFramesOfASecond); });
}
BENCHMARK(playOfADayThatGrows)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(200);

}  // namespace
}  // namespace sonavault

BENCHMARK_MAIN();
