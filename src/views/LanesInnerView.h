#pragma once

#include <QWidget>
#include <memory>
#include <optional>
#include <vector>

#include "platform/MainTimer.h"
#include "review/Geometry.h"
#include "review/TimelineRows.h"
#include "views/Hints.h"
#include "views/LaneView.h"
#include "views/PlayheadView.h"
#include "views/SummaryBarView.h"
#include "views/TimeAxisView.h"
#include "views/TimelineHost.h"

namespace sonavault {

/// The whole timeline as wide as the zoom makes it: lanes with their markers, summary bar, time
/// axis, and the playhead across all of it. Only what is exposed is drawn.
///
/// Thread: main.
class LanesInnerView final : public QWidget, public HintedPlaces {
  public:
    /// `host` outlives this view.
    LanesInnerView(TimelineHost& host, QWidget* parent);

    /// Lays the rows out in that room, takes the size that they need, and draws all anew.
    void relayout(const RowRoom& room);

    /// The width of the day's axis; 0 before the first layout. Units: points
    double timelineWidth() const;

    /// The size that the rows need, of which the view's own is the nearest in whole points. Units:
    /// points
    Size contentSize() const { return rows_.content; }

    /// Where the summary bar lies in this view.
    Box summaryBarFrame() const;

    const Box& playheadFrame() const { return playhead_.frame(); }
    void setPlayheadFrame(const Box& frame);

    /// The selections, the waveform or the length of the day has changed.
    void redrawSummaryBar();

    /// The places have moved at which the pointer shows that a selection's edge can be dragged.
    void rebuildSummaryBarCursors();

    /// What the marker under `point` says; empty beside the markers.
    QString hintAt(QPoint point) const override;

    /// The playhead's time and what the markers say on which it stands: the value of the timeline
    /// to a screen reader.
    QString playheadReadout() const;

    TimelineHost& host() const { return host_; }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;

  private:
    void paintPart(QPainter& painter, const QRect& part);
    void paintBesideRows(QPainter& painter, const QRect& part) const;
    const Marker* markerAt(Point place) const;
    void clickBareTimeline(Point place);
    void endGesture();
    void tellScreenReader();

    TimelineHost& host_;
    MarkerPainter markers_;
    TimelineRows rows_;
    std::vector<LaneView> lanes_;  ///< the visible ones, from the top
    SummaryBarView summaryBar_;
    TimeAxisView timeAxis_;
    PlayheadView playhead_;
    bool draggingBar_ = false;
    std::optional<QPointF> pointer_;  ///< where it was last, on the screen
    std::unique_ptr<MainTimer> standsStill_;
};

}  // namespace sonavault
