#include "review/LaneMarkers.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

#include "review/MarkerLook.h"
#include "review/TimelineMapping.h"

namespace sonavault {

namespace {

/// No frame reaches further from its marker's moment, but for the length of a span. Units: points
constexpr double kWidestFrame = kMarkerVTArrowW;

double endOf(const Marker& marker) {
    return marker.timeSec + (isSpan(marker) ? marker.durationSec : 0);
}

}  // namespace

LaneMarkers::LaneMarkers(const std::vector<Marker>& markers) {
    for (const Marker& each : markers)
        if (std::isfinite(each.timeSec)) row(laneFor(each.type)).push_back({&each, 0});
    for (auto& entries : rows_) {
        // Stable, so that of one moment the later in the list stays the upper.
        std::stable_sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
            return a.marker->timeSec < b.marker->timeSec;
        });
        double reach = -std::numeric_limits<double>::infinity();
        for (Entry& each : entries) each.reachesTo = reach = std::max(reach, endOf(*each.marker));
    }
}

std::vector<const Marker*> LaneMarkers::exposed(Lane lane, Size size, Extent exposed) const {
    std::vector<const Marker*> found;
    if (!(size.width > 0)) return found;
    // As points, and from the same function that gives a marker its frame: the search must not
    // round otherwise than the drawing.
    const auto& entries = rows_.at(static_cast<std::size_t>(lane));
    auto each = std::partition_point(entries.begin(), entries.end(), [&](const Entry& entry) {
        return xAt({entry.reachesTo}, size.width) + kWidestFrame < exposed.left;
    });
    for (; each != entries.end(); ++each) {
        if (xAt({each->marker->timeSec}, size.width) - kWidestFrame > exposed.right) break;
        const Box frame = markerFrame(*each->marker, size);
        if (frame.right() >= exposed.left && frame.x <= exposed.right)
            found.push_back(each->marker);
    }
    // All are elements of one vector, so their addresses are in the order of the list.
    std::sort(found.begin(), found.end(), std::less<>());
    return found;
}

const Marker* LaneMarkers::at(Lane lane, Size size, Point point) const {
    const auto candidates = exposed(lane, size, {point.x, point.x});
    const auto hit = std::find_if(
        candidates.rbegin(), candidates.rend(),
        [&](const Marker* marker) { return markerFrame(*marker, size).contains(point); });
    return hit == candidates.rend() ? nullptr : *hit;
}

}  // namespace sonavault
