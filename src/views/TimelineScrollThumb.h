#pragma once

#include <QScrollBar>
#include <QWidget>
#include <memory>

#include "platform/MainTimer.h"

namespace sonavault {

/// The handle of a scroll bar, which lies over what is scrolled and takes no room. It shows while
/// there is something to scroll, and something has just moved or the pointer is near or holds it.
/// It has no trough: beside it, clicks go to what lies below.
///
/// Thread: main.
class TimelineScrollThumb final : public QWidget {
  public:
    /// Shows and moves `bar`, which outlives this view, along `parent`'s lower or right edge.
    TimelineScrollThumb(QScrollBar& bar, std::unique_ptr<MainTimer> timer, QWidget* parent);

    /// The pointer is at `place` of the parent, or not over it at all.
    void pointerAt(QPointF place);
    void pointerGone();

    /// The parent has another size.
    void follow();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

  private:
    bool horizontal() const { return bar_.orientation() == Qt::Horizontal; }
    double along(QPointF place) const { return horizontal() ? place.x() : place.y(); }

    /// From the first to the last place of the track. Units: points
    double trackLength() const;
    double thumbLength() const;
    void moved();
    void linger();
    void setNear(bool isNear);
    void showOrHide();

    QScrollBar& bar_;
    std::unique_ptr<MainTimer> timer_;
    bool near_ = false;
    bool lingers_ = false;
    bool over_ = false;
    bool held_ = false;
    double heldAt_ = 0;  ///< from the thumb's beginning
};

}  // namespace sonavault
