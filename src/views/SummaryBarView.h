#pragma once

#include <QPainter>

#include "review/Geometry.h"
#include "review/SummaryBarGesture.h"
#include "views/TimelineHost.h"

namespace sonavault {

/// The strip between the lanes and the time axis: what of the day has audio, its waveform, and the
/// selections, which are made and changed here with the mouse. It is a part of the view that shows
/// the timeline, and counts in that view's points.
///
/// Thread: main.
class SummaryBarView final : private SummaryBarGestureHost {
  public:
    /// `host` outlives this object.
    explicit SummaryBarView(TimelineHost& host);

    const Box& frame() const { return frame_; }
    void setFrame(const Box& frame, double timelineWidth);

    void paint(QPainter& painter, Extent exposed) const;

    /// Whether an edge of a selection can be dragged there.
    bool resizesAt(Point place) const;

    void mouseDown(double x) { gesture_.mouseDown(x - frame_.x); }
    void mouseDragged(double x) { gesture_.mouseDragged(x - frame_.x); }
    void mouseUp() { gesture_.mouseUp(); }

  private:
    double trackW() const override;
    void jumpTo(DaySeconds position) override { host_.jumpTo(position); }

    TimelineHost& host_;
    Box frame_;
    double timelineWidth_ = 0;
    SummaryBarGesture gesture_;
};

}  // namespace sonavault
