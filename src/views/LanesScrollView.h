#pragma once

#include <QScrollArea>

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
};

}  // namespace sonavault
