#pragma once

#include <QPainter>

#include "review/Geometry.h"
#include "review/TimelineRows.h"
#include "views/MarkerPainter.h"
#include "views/TimelineHost.h"

namespace sonavault {

/// One lane of the timeline: its ground and its markers. It is a part of the view that shows all
/// lanes, and counts in that view's points.
///
/// Thread: main.
class LaneView {
  public:
    /// `host` and `markers` outlive this object.
    LaneView(const TimelineHost& host, MarkerPainter& markers, const LaneRow& row)
        : host_(&host), markers_(&markers), row_(row) {}

    Lane lane() const { return row_.lane; }
    const Box& frame() const { return row_.frame; }

    void paint(QPainter& painter, Extent exposed) const;

    /// The uppermost marker at a place of this lane; null where there is none.
    const Marker* markerAt(Point place) const;

  private:
    Size size() const { return {row_.frame.width, row_.frame.height}; }

    const TimelineHost* host_;
    MarkerPainter* markers_;
    LaneRow row_;
};

}  // namespace sonavault
