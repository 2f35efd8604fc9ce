#pragma once

#include <memory>

#include "platform/MainTimer.h"
#include "review/LaneMarkers.h"
#include "review/Lanes.h"
#include "review/Selections.h"
#include "review/SummaryBar.h"
#include "store/RecordingModel.h"

namespace sonavault {

/// All that the timeline's views show, and what they ask for when the person uses them. They keep
/// no state of their own but that of a gesture.
///
/// Thread: main.
class TimelineHost {
  public:
    virtual ~TimelineHost() = default;

    virtual DaySeconds playheadSec() const = 0;
    virtual double zoomMult() const = 0;
    virtual const LaneSet& visibleLanes() const = 0;

    /// The height of the summary bar. Units: points
    virtual double actionBarHeight() const = 0;

    /// The markers of the day under review, as they are now.
    virtual const LaneMarkers& laneMarkers() const = 0;

    /// What the summary bar shows, but for its size and the axis's width, which the view knows.
    virtual SummaryScene summaryScene() const = 0;

    virtual Selections& selections() = 0;

    /// For what has to be held for a while.
    virtual std::unique_ptr<MainTimer> makeMainTimer() = 0;

    /// Moves the playhead, limited to the day, and plays on there if it was playing.
    virtual void jumpTo(DaySeconds position) = 0;

    /// A vertical swipe of `deltaY` points with the pointer at `x` of the content.
    virtual void performZoom(double deltaY, double x) = 0;

    /// The summary bar is being dragged to another height: lays the timeline out anew.
    virtual void resizeActionBar(double height) = 0;

    /// The drag has ended: its height is kept for the next launch.
    virtual void keepActionBarHeight() = 0;
};

}  // namespace sonavault
