#pragma once

#include <algorithm>

#include "store/RecordingModel.h"

namespace sonavault {

// The one mapping between the day's clock and places on the screen. The axis is always a whole day
// long, however much of it holds audio.

/// The width of the axis: the timeline's own, or that of the view in question before the first
/// layout.
inline double mappingWidth(double timelineWidth, double viewWidth) {
    return timelineWidth > 0 ? timelineWidth : viewWidth;
}

/// Where a moment lies on an axis of `width`. Units: points
inline double xAt(DaySeconds position, double width) {
    return position.value / kSecondsInDay * width;
}

/// The moment at `x`, limited to the axis; midnight while there is no axis.
inline DaySeconds secAt(double x, double width) {
    if (!(width > 0)) return {0};
    return {std::clamp(x, 0.0, width) / width * kSecondsInDay};
}

}  // namespace sonavault
