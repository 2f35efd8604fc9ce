#include "review/Waveform.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <optional>

namespace sonavault {

namespace {

/// A range of buckets, the end not included.
struct Buckets {
    std::size_t begin;
    std::size_t end;
};

/// The buckets under the seconds of the file from `from` to `to`; nothing beside the file.
std::optional<Buckets> bucketsUnder(const PeaksData& peaks, FileSeconds from, FileSeconds to) {
    const auto count = static_cast<double>(peaks.rms.size());
    const double first = from.value / peaks.bucketSec;
    const double last = to.value / peaks.bucketSec;
    if (!std::isfinite(first) || !std::isfinite(last)) return std::nullopt;
    // Limited before they become integers, which far beside the file could not hold them.
    const double begin = std::clamp(std::floor(first), 0.0, count);
    const double end = std::clamp(std::ceil(last), 0.0, count);
    if (!(begin < end)) return std::nullopt;
    return Buckets{static_cast<std::size_t>(begin), static_cast<std::size_t>(end)};
}

float meanOf(const std::vector<float>& rms, const Buckets& buckets) {
    const auto at = [&rms](std::size_t index) {
        return rms.begin() + static_cast<std::ptrdiff_t>(index);
    };
    const float sum = std::accumulate(at(buckets.begin), at(buckets.end), 0.0F);
    return sum / static_cast<float>(buckets.end - buckets.begin);
}

/// The first column, and the one after the last.
struct Columns {
    std::int64_t first;
    std::int64_t end;
};

Columns columnsIn(Extent exposed, double trackW) {
    const double first = std::floor(std::clamp(exposed.left, 0.0, trackW));
    const double end = std::ceil(std::max(first, std::min(exposed.right, trackW)));
    return {static_cast<std::int64_t>(first), static_cast<std::int64_t>(end)};
}

}  // namespace

bool showsWaveform(const PeaksData& peaks, double zoomMult) {
    return !peaks.rms.empty() && peaks.bucketSec > 0 && zoomMult >= kWaveformZoomFadeStart;
}

double waveformAlpha(double zoomMult) {
    constexpr double kFade = kWaveformZoomFadeEnd - kWaveformZoomFadeStart;
    return std::clamp((zoomMult - kWaveformZoomFadeStart) / kFade, 0.0, 1.0) * kWaveformBaseAlpha;
}

std::vector<WaveformColumn> waveformColumns(const PeaksData& peaks, const WaveformTrack& track,
                                            Extent exposed) {
    constexpr double kLeastHalfHeight = 0.5;
    constexpr double kMargin = 2;
    std::vector<WaveformColumn> columns;
    if (!(track.trackW > 0)) return columns;
    const double loudest = peaks.maxRMS > 0 ? static_cast<double>(peaks.maxRMS) : 1;
    const double maxH = track.height / 2 - kMargin;
    const double secPerPx = kSecondsInDay / track.trackW;
    const auto [first, end] = columnsIn(exposed, track.trackW);
    for (std::int64_t column = first; column < end; ++column) {
        const auto x = static_cast<double>(column);
        const double from = x * secPerPx;
        const auto buckets = bucketsUnder(peaks, inFile({from}, track.currentRecordingOffset),
                                          inFile({from + secPerPx}, track.currentRecordingOffset));
        if (!buckets) continue;
        const double halfHeight = static_cast<double>(meanOf(peaks.rms, *buckets)) / loudest * maxH;
        if (halfHeight > kLeastHalfHeight) columns.push_back({x, halfHeight});
    }
    return columns;
}

}  // namespace sonavault
