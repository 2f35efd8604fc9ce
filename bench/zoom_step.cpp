// What a step of the zoom costs on a day of 10,000 markers: a wheel event, the new layout and all
// that is drawn after it. Beside it, drawing alone what is then seen, a step of scrolling, and a
// playhead that runs. The times are milliseconds a step; the aim of a zoom step is below 8 at every
// factor.

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QPointF>
#include <QWheelEvent>
#include <array>
#include <cmath>
#include <cstddef>

#include "Measuring.h"
#include "views/TimelineWindow.h"

namespace {

using namespace sonavault;

constexpr int kMarkers = 10'000;
constexpr QSize kTimeline{1082, 702};

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

PeaksData waveform() {
    PeaksData peaks{.bucketSec = 0.25, .totalDurationSec = kSecondsInDay};
    for (int i = 0; i < 345'600; ++i)
        peaks.rms.push_back(0.2F + 0.2F * static_cast<float>(std::sin(i * 0.37)));
    peaks.maxRMS = 0.4F;
    return peaks;
}

/// A busy day at one of the presets, at noon.
struct BusyTimeline {
    explicit BusyTimeline(std::size_t preset) {
        window.scene.peaksData = &peaks;
        window.scene.audio = AudioExtent{{0}, kSecondsInDay};
        window.haveMarkers(busyDay());
        window.chosen.append({40'000}, {43'300});
        window.playhead = 43'200;
        window.haveZoom(preset);
        draw();
    }

    /// Lets everything be drawn that was asked for.
    static void draw() { QCoreApplication::processEvents(); }

    void wheel(QPointF pixels) {
        QWidget& target = *window.view.viewport();
        const QPointF at(kTimeline.width() / 2.0, kTimeline.height() / 2.0);
        QWheelEvent event(at, target.mapToGlobal(at), pixels.toPoint(), {}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&target, &event);
    }

    PeaksData peaks = waveform();
    testing::TimelineWindow window{kTimeline};
};

std::size_t presetOf(const benchmark::State& state) {
    return static_cast<std::size_t>(state.range(0));
}

void nameFactor(benchmark::State& state) {
    state.SetLabel("factor " + std::string(kZoomPresets.at(presetOf(state)).identifier));
}

/// In and out again, so that all steps are at about the factor. Each is followed by drawing alone
/// what it has brought to the screen, which is what the ratio is to.
void zoomStep(benchmark::State& state) {
    BusyTimeline timeline(presetOf(state));
    const int layoutsBefore = timeline.window.layouts;
    double up = presetOf(state) == 0 ? 2 : -2;
    double stepping = 0;
    double drawing = 0;
    while (state.KeepRunning()) {
        const double step = secondsOf([&] {
            timeline.wheel({0, up});
            BusyTimeline::draw();
        });
        state.SetIterationTime(step);
        stepping += step;
        up = -up;
        timeline.window.inner().update();
        drawing += secondsOf(BusyTimeline::draw);
    }
    if (timeline.window.layouts - layoutsBefore != static_cast<int>(state.iterations()))
        state.SkipWithError("not every step was a zoom");
    nameFactor(state);
    state.counters["drawing_ms"] = 1e3 * drawing / static_cast<double>(state.iterations());
    state.counters["ratio"] = stepping / drawing;
}
BENCHMARK(zoomStep)->DenseRange(0, 4)->UseManualTime()->Unit(benchmark::kMillisecond);

void repaint(benchmark::State& state) {
    BusyTimeline timeline(presetOf(state));
    while (state.KeepRunning()) {
        timeline.window.inner().update();
        BusyTimeline::draw();
    }
    nameFactor(state);
}
BENCHMARK(repaint)->DenseRange(0, 4)->Unit(benchmark::kMillisecond);

void scrollStep(benchmark::State& state) {
    BusyTimeline timeline(presetOf(state));
    double sideways = 30;
    while (state.KeepRunning()) {
        timeline.wheel({sideways, 0});
        sideways = -sideways;
        BusyTimeline::draw();
    }
    nameFactor(state);
}
BENCHMARK(scrollStep)->DenseRange(1, 4)->Unit(benchmark::kMillisecond);

/// Each step is one that is seen: most of the ticks of playback move nothing on the screen.
void playheadStep(benchmark::State& state) {
    BusyTimeline timeline(presetOf(state));
    const double width = timeline.window.inner().timelineWidth();
    double step = 0;
    while (state.KeepRunning()) {
        step = step < 100 ? step + 1 : 0;
        const DaySeconds playhead{43'200 + step * kSecondsInDay / width};
        timeline.window.inner().setPlayheadFrame(
            playheadFrame(playhead, width, kTimeline.height()));
        BusyTimeline::draw();
    }
    nameFactor(state);
}
BENCHMARK(playheadStep)->DenseRange(0, 4)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
