#include "review/DayNavigation.h"

#include <cmath>

namespace sonavault {

std::optional<DaySeconds> markerFrom(const std::vector<Marker>& markers, DaySeconds playhead,
                                     int direction) {
    std::optional<double> nearest;
    for (const Marker& each : markers) {
        const double time = each.timeSec;
        const bool candidate = direction > 0 ? time > playhead.value + kMarkerDeadZoneSec
                                             : time < playhead.value - kMarkerDeadZoneSec;
        if (candidate && (!nearest || (direction > 0 ? time < *nearest : time > *nearest)))
            nearest = time;
    }
    if (!nearest) return std::nullopt;
    return DaySeconds{*nearest};
}

DaySeconds hourFrom(DaySeconds playhead, int delta) {
    constexpr double kHourSec = 3600;
    return {(std::trunc(playhead.value / kHourSec) + delta) * kHourSec};
}

void DayNavigation::jumpToMarker(int direction) {
    if (const auto target = markerFrom(host_.allMarkers(), host_.playheadSec(), direction))
        host_.jumpTo(*target);
}

void DayNavigation::jumpRelative(double seconds) {
    host_.jumpTo({host_.playheadSec().value + seconds});
}

void DayNavigation::jumpRelativeHour(int delta) {
    host_.jumpTo(hourFrom(host_.playheadSec(), delta));
}

}  // namespace sonavault
