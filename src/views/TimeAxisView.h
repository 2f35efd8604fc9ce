#pragma once

#include <QPainter>

#include "review/Geometry.h"

namespace sonavault {

/// The clock below the timeline. It is a part of the view that shows the timeline, and counts in
/// that view's points.
///
/// Thread: main.
class TimeAxisView {
  public:
    const Box& frame() const { return frame_; }
    void setFrame(const Box& frame) { frame_ = frame; }

    void paint(QPainter& painter, double zoomMult, Extent exposed) const;

  private:
    Box frame_;
};

}  // namespace sonavault
