#include "review/SummaryBar.h"

#include <algorithm>
#include <cmath>

#include "review/TimelineMapping.h"
#include "review/Waveform.h"

namespace sonavault {

namespace {

constexpr double kReach = kSelectionEdgeHitTolerance;

/// A selection's sides on the screen.
struct Sides {
    double lowX;
    double highX;
};

Sides sidesOf(const Selection& selection, double trackW) {
    return {xAt({selection.lowSec()}, trackW), xAt({selection.highSec()}, trackW)};
}

void addRules(const SummaryScene& scene, std::vector<FilledBox>& fills) {
    const auto [width, height] = scene.size;
    fills.push_back({{0, 0, width, 1}, kColorSummaryRule});
    fills.push_back({{0, height - 1, width, 1}, kColorSummaryRule});
}

void addNoAudio(const SummaryScene& scene, std::vector<FilledBox>& fills) {
    if (!scene.audio || !(scene.trackW > 0)) return;
    const auto [width, height] = scene.size;
    const double start = scene.audio->start.value;
    const double startX = std::max(0.0, xAt({start}, scene.trackW));
    const double endX = std::max(
        startX, std::min(scene.trackW, xAt({start + scene.audio->durationSec}, scene.trackW)));
    if (startX > 0) fills.push_back({{0, 1, startX, height - 2}, kColorNoAudio});
    if (width > endX) fills.push_back({{endX, 1, width - endX, height - 2}, kColorNoAudio});
}

void addWaveform(const SummaryScene& scene, Extent exposed, std::vector<FilledBox>& fills) {
    if (!scene.peaksData || !showsWaveform(*scene.peaksData, scene.zoomMult)) return;
    const Colour colour = kColorWaveform.withAlpha(waveformAlpha(scene.zoomMult));
    const WaveformTrack track{scene.trackW, scene.size.height, scene.currentRecordingOffset};
    for (const WaveformColumn& each : waveformColumns(*scene.peaksData, track, exposed))
        fills.push_back(
            {{each.x, scene.size.height / 2 - each.halfHeight, 1, 2 * each.halfHeight}, colour});
}

/// All bands before any edge: overlapping bands deepen each other, and no edge is dimmed.
void addSelections(const SummaryScene& scene, std::vector<FilledBox>& fills) {
    if (!scene.selections) return;
    const double height = scene.size.height;
    for (const Selection& each : *scene.selections) {
        const auto [lowX, highX] = sidesOf(each, scene.trackW);
        fills.push_back({{lowX, 0, highX - lowX, height}, kColorSelectionBand});
    }
    for (const Selection& each : *scene.selections) {
        const auto [lowX, highX] = sidesOf(each, scene.trackW);
        fills.push_back({{lowX, 0, 1, height}, kColorSelectionEdge});
        fills.push_back({{highX - 1, 0, 1, height}, kColorSelectionEdge});
    }
}

void addPendingStart(const SummaryScene& scene, std::vector<FilledBox>& fills) {
    if (!scene.pendingStartSec) return;
    const double x = xAt({*scene.pendingStartSec}, scene.trackW);
    fills.push_back({{x - 1, 0, 2, scene.size.height}, kColorPendingStart});
}

}  // namespace

std::optional<EdgeHit> hitEdge(const std::vector<Selection>& selections, double x, double trackW) {
    for (std::size_t i = 0; i < selections.size(); ++i) {
        const auto [lowX, highX] = sidesOf(selections[i], trackW);
        const bool inOrder = selections[i].endSec >= selections[i].startSec;
        if (std::abs(x - lowX) <= kReach) return EdgeHit{i, inOrder ? Edge::start : Edge::end};
        if (std::abs(x - highX) <= kReach) return EdgeHit{i, inOrder ? Edge::end : Edge::start};
    }
    return std::nullopt;
}

std::optional<std::size_t> hitBody(const std::vector<Selection>& selections, double x,
                                   double trackW) {
    for (std::size_t i = 0; i < selections.size(); ++i) {
        const auto [lowX, highX] = sidesOf(selections[i], trackW);
        if (x >= lowX + kReach && x <= highX - kReach) return i;
    }
    return std::nullopt;
}

std::vector<Box> resizeZones(const std::vector<Selection>& selections, double trackW,
                             double height) {
    std::vector<Box> zones;
    for (const Selection& each : selections) {
        const auto [lowX, highX] = sidesOf(each, trackW);
        zones.push_back({lowX - kReach, 0, 2 * kReach, height});
        zones.push_back({highX - kReach, 0, 2 * kReach, height});
    }
    return zones;
}

double audioDurationSec(const std::filesystem::path& loadedFileURL, double fileDurationSec,
                        const std::optional<RecordingNow>& recording) {
    const bool grows = recording && recording->lastRecordingURL == loadedFileURL;
    return grows ? recording->currentRecordingDurationSec : fileDurationSec;
}

std::vector<FilledBox> summaryBarFills(const SummaryScene& scene, Extent exposed) {
    std::vector<FilledBox> fills;
    addRules(scene, fills);
    addNoAudio(scene, fills);
    addWaveform(scene, exposed, fills);
    addSelections(scene, fills);
    addPendingStart(scene, fills);
    return fills;
}

}  // namespace sonavault
