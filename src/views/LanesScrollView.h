#pragma once

#include <QScrollArea>

#include "review/ScrollAxis.h"
#include "review/TimelineZoomHost.h"
#include "views/LanesInnerView.h"
#include "views/TimelineHost.h"

namespace sonavault {

/// The part of the timeline that is seen. Its scroll bars lie over the content and take no room.
/// Swipes pan or zoom.
///
/// Thread: main.
class LanesScrollView final : public QScrollArea {
  public:
    /// `host` outlives this view.
    LanesScrollView(TimelineHost& host, QWidget* parent);

    LanesInnerView& lanesInnerView();

    /// The part of the content that is seen. Units: points
    Size clipSize() const;

    ZoomExtent extent() const;
    double scrollX() const;

    /// Shows the content from (x, 0) on.
    void scrollTo(double x);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

  private:
    void setScrollX(double x);
    void pan(QPointF delta);

    TimelineHost& host_;
    LanesInnerView* inner_;  ///< the scroll area owns it
    ScrollAxis axis_;
    double scrollX_ = 0;  ///< to a fraction of a point, as long as nobody else has scrolled
    QWidget* focusRing_;
};

}  // namespace sonavault
