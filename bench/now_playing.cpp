// What the "Now playing" line costs at each of the display's twenty ticks a second, on a day of
// 10,000 markers, beside a walk over all markers at each tick. The times are microseconds a
// tick; the aim is below 50.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "review/NowPlaying.h"

namespace {

using namespace sonavault;

constexpr int kMarkers = 10'000;

std::vector<Marker> busyDay() {
    constexpr std::array kTypes{"vt_start", "hour",    "vt_end", "break", "mic_start",
                                "custom",   "mic_end", "vt",     "eas",   "mic"};
    std::vector<Marker> markers;
    markers.reserve(kMarkers);
    for (int i = 0; i < kMarkers; ++i)
        markers.push_back({.type = kTypes.at(static_cast<std::size_t>(i) % kTypes.size()),
                           .timeSec = i * kSecondsInDay / kMarkers,
                           .label = "A voicetrack between two songs",
                           .durationSec = 6});
    return markers;
}

/// The worst that a day can be for a search from the right: one break over the whole day, and
/// thousands of others that are over before the playhead comes.
std::vector<Marker> dayUnderOneBreak() {
    std::vector<Marker> markers{
        {.type = "break", .timeSec = 0, .label = "All day", .durationSec = kSecondsInDay}};
    markers.reserve(kMarkers);
    for (int i = 1; i < kMarkers; ++i)
        markers.push_back({.type = "break", .timeSec = i * 0.1, .durationSec = 0.01});
    return markers;
}

/// The text by a walk over all markers.
std::string textByWalk(const std::vector<Marker>& markers, double playhead) {
    auto active = markedSegments(markers);
    std::erase_if(active, [playhead](const MarkedSegment& each) {
        return !(each.startSec <= playhead && playhead <= each.endSec);
    });
    const auto last =
        std::max_element(active.begin(), active.end(),
                         [](const auto& a, const auto& b) { return a.startSec < b.startSec; });
    return nowPlayingText(last == active.end() ? nullptr : &*last);
}

/// A playhead that runs on as in playback, from the end of the morning.
class Playhead {
  public:
    double tick() { return now_ = now_ + 0.05 < kSecondsInDay ? now_ + 0.05 : 40'000; }

  private:
    double now_ = 40'000;
};

void ticksOf(benchmark::State& state, const std::vector<Marker>& markers) {
    const NowPlaying nowPlaying(markers);
    Playhead playhead;
    for (int i = 0; i < 1000; ++i) {
        const double now = playhead.tick();
        if (nowPlayingText(nowPlaying.at({now})) != textByWalk(markers, now))
            return state.SkipWithError("the walk has another answer");
    }
    while (state.KeepRunning())
        benchmark::DoNotOptimize(nowPlayingText(nowPlaying.at({playhead.tick()})));
}

void tick(benchmark::State& state) {
    ticksOf(state, busyDay());
}
BENCHMARK(tick)->Unit(benchmark::kMicrosecond);

void tickUnderOneBreak(benchmark::State& state) {
    ticksOf(state, dayUnderOneBreak());
}
BENCHMARK(tickUnderOneBreak)->Unit(benchmark::kMicrosecond);

void tickByWalk(benchmark::State& state) {
    const auto markers = busyDay();
    Playhead playhead;
    while (state.KeepRunning()) benchmark::DoNotOptimize(textByWalk(markers, playhead.tick()));
}
BENCHMARK(tickByWalk)->Unit(benchmark::kMicrosecond);

void readsTheMarkersAnew(benchmark::State& state) {
    const auto markers = busyDay();
    while (state.KeepRunning()) benchmark::DoNotOptimize(NowPlaying(markers).at({40'000}));
}
BENCHMARK(readsTheMarkersAnew)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
