#pragma once

#include <QWidget>

#include "views/TimelineHost.h"

namespace sonavault {

/// The names of the lanes, left of them and at their heights.
///
/// Thread: main.
class LaneLabelsColumnView final : public QWidget {
  public:
    /// `host` outlives this view.
    LaneLabelsColumnView(TimelineHost& host, QWidget* parent);

    /// Units: points
    void relayout(double totalH, double actionBarH);
};

}  // namespace sonavault
