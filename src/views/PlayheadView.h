#pragma once

#include <QPainter>
#include <QRegion>

#include "review/Geometry.h"

namespace sonavault {

/// The line at the moment that is heard, with a cap on top. It is a part of the view that shows the
/// timeline, and counts in that view's points.
///
/// Thread: main.
class PlayheadView {
  public:
    const Box& frame() const { return frame_; }
    void setFrame(const Box& frame) { frame_ = frame; }

    /// What has to be drawn anew where it stands, or has stood.
    QRegion covered() const;

    void paint(QPainter& painter) const;

  private:
    Box frame_;
};

}  // namespace sonavault
