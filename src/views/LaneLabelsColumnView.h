#pragma once

#include <QWidget>
#include <map>
#include <vector>

#include "review/TimelineRows.h"
#include "views/Hints.h"
#include "views/TextView.h"
#include "views/TimelineHost.h"

namespace sonavault {

/// The names of the lanes, left of them and at their heights.
///
/// Thread: main.
class LaneLabelsColumnView final : public QWidget, public HintedPlaces {
  public:
    /// `host` outlives this view.
    LaneLabelsColumnView(TimelineHost& host, QWidget* parent);

    /// Units: points
    void relayout(double totalH, double actionBarH);

    /// Keeps the names beside their lanes when these are scrolled. Units: points
    void scrollToY(int y);

    /// What the lane at `point` is for; empty beside the lanes.
    QString hintAt(QPoint point) const override;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    void placeLabels();

    TimelineHost& host_;
    std::map<Lane, TextView*> labels_;  ///< children of this view
    std::vector<LaneLabelCell> cells_;  ///< of the visible lanes, unscrolled
    int scrollY_ = 0;
};

}  // namespace sonavault
