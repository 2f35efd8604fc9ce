#pragma once

#include <cstddef>
#include <optional>

#include "store/RecordingModel.h"

namespace sonavault {

/// How wide things are, as they stand at the moment. Units: points
struct ZoomExtent {
    double timelineWidth = 0;  ///< of the axis
    double contentWidth = 0;   ///< of all that can be scrolled
    double clipWidth = 0;      ///< of what is seen
};

/// What the zoom asks of the program around it.
///
/// Thread: main.
class TimelineZoomHost {
  public:
    virtual ~TimelineZoomHost() = default;

    virtual ZoomExtent zoomExtent() const = 0;

    /// The left edge of what is seen. Units: points of the content
    virtual double scrollX() const = 0;

    /// Moves what is seen to (x, 0).
    virtual void scrollTo(double x) = 0;

    virtual DaySeconds playheadSec() const = 0;

    /// Lays the timeline out for another factor; zoomExtent() then tells the new widths.
    virtual void layOutLogsTab() = 0;

    /// Sets the button of one preset on and all others off.
    virtual void showZoomPreset(std::optional<std::size_t> preset) = 0;
};

}  // namespace sonavault
