#pragma once

#include <QWidget>

#include "review/Geometry.h"
#include "review/TimelineRows.h"
#include "views/TimelineHost.h"

namespace sonavault {

/// The whole timeline as wide as the zoom makes it: lanes with their markers, summary bar, time
/// axis, and the playhead across all of it. Only what is exposed is drawn.
///
/// Thread: main.
class LanesInnerView final : public QWidget {
  public:
    /// `host` outlives this view.
    LanesInnerView(TimelineHost& host, QWidget* parent);

    /// Lays the rows out in that room, takes the size that they need, and draws all anew.
    void relayout(const RowRoom& room);

    /// The width of the day's axis; 0 before the first layout. Units: points
    double timelineWidth() const;

    /// Where the summary bar lies in this view.
    Box summaryBarFrame() const;

    void setPlayheadFrame(const Box& frame);

    /// The selections, the waveform or the length of the day has changed.
    void redrawSummaryBar();

    /// The places have moved at which the pointer shows that a selection's edge can be dragged.
    void rebuildSummaryBarCursors();
};

}  // namespace sonavault
