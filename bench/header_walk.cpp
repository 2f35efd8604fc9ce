#include <benchmark/benchmark.h>

#include "FullDay.h"
#include "Measuring.h"
#include "platform/AudioFileInfo.h"

namespace {

using namespace sonavault;

/// The walk and the yardstick take turns, so that both meet the machine in the same mood.
void walksADayInTheTimeOfCat(benchmark::State& state) {
    const FullDay day;
    if (!secondsOfCat(day.file())) return state.SkipWithError("cat failed");
    double walk = 0;
    double cat = 0;
    while (state.KeepRunning()) {
        FrameCount frames = 0;
        const double took = secondsOf([&] {
            const auto info = readAudioFileInfo(day.file());
            if (info) frames = info.value().frames;
        });
        if (frames != kFramesOfADay * kSamplesOfAFrame)
            return state.SkipWithError("the day's length is wrong");
        state.SetIterationTime(took);
        walk += took;
        const auto reading = secondsOfCat(day.file());
        if (!reading) return state.SkipWithError("cat failed");
        cat += *reading;
    }
    state.counters["cat_ms"] = benchmark::Counter(cat * 1000, benchmark::Counter::kAvgIterations);
    state.counters["walk_to_cat"] = walk / cat;
}

}  // namespace

BENCHMARK(walksADayInTheTimeOfCat)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(30);

BENCHMARK_MAIN();
