#pragma once

#include <QAbstractScrollArea>
#include <QWidget>
#include <chrono>
#include <memory>
#include <optional>

#include "platform/MainTimer.h"
#include "review/ScrollThumb.h"

namespace sonavault {

/// A scroll bar that lies over the content and takes no room. It is no more than its thumb, which
/// shows for a while when something moves, and as long as the pointer is near or holds it. It has
/// no trough: beside it, clicks go to what lies below.
///
/// It stands in for the area's own bar, which is hidden but still holds range and value.
///
/// Thread: main.
class OverlayScrollBar final : public QWidget {
  public:
    /// How long it stays after the last reason to show it.
    static constexpr std::chrono::milliseconds kStay{900};

    /// How near the pointer comes to the edge before it shows. Units: points
    static constexpr double kNear = 24;

    /// Lies along the lower or right edge of what `area` shows, and becomes its child.
    OverlayScrollBar(QAbstractScrollArea& area, Qt::Orientation orientation,
                     std::unique_ptr<MainTimer> timer = std::make_unique<QtMainTimer>());

    bool eventFilter(QObject* watched, QEvent* event) override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void enterEvent(QEnterEvent* event) override;

  private:
    bool isVertical() const { return orientation_ == Qt::Vertical; }
    bool isInHand() const { return caughtAt_.has_value() || underMouse(); }
    QScrollBar& bar() const;
    ScrollRange range() const;
    double track() const;
    double along(QPointF point) const { return isVertical() ? point.y() : point.x(); }
    double toEdge(QPointF point) const;
    void moved();
    void place();
    void linger();
    void setNear(bool isNear);
    void showOrHide();

    QAbstractScrollArea& area_;
    const Qt::Orientation orientation_;
    const std::unique_ptr<MainTimer> timer_;
    bool isNear_ = false;
    bool lingers_ = false;
    std::optional<double> caughtAt_;  // from the thumb's beginning, while it is dragged
};

}  // namespace sonavault
