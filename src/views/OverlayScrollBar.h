#pragma once

#include <QAbstractScrollArea>
#include <QTimer>
#include <QWidget>
#include <chrono>
#include <optional>

#include "review/ScrollThumb.h"

namespace sonavault {

/// A scroll bar that lies over the content and takes no room. It is no more than its thumb, which
/// shows while the content scrolls and while the pointer is over the area, and can be dragged;
/// clicks beside it reach the content.
///
/// It stands in for the area's own bar, which is hidden but still holds range and value.
///
/// Thread: main.
class OverlayScrollBar final : public QWidget {
  public:
    /// How long it stays after the last reason to show it.
    static constexpr std::chrono::milliseconds kStay{900};

    /// Becomes a child of `area`.
    OverlayScrollBar(QAbstractScrollArea& area, Qt::Orientation orientation,
                     std::chrono::milliseconds stay = kStay);

    bool eventFilter(QObject* watched, QEvent* event) override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

  private:
    QScrollBar& bar() const;
    ScrollRange range() const;
    double track() const;
    double along(QPointF point) const;
    void place();
    void reveal();
    void hideIfIdle();

    QAbstractScrollArea& area_;
    const Qt::Orientation orientation_;
    QTimer hideTimer_;
    bool isPointerOverArea_ = false;
    std::optional<double> caughtAt_;  // from the thumb's beginning, while it is dragged
};

}  // namespace sonavault
