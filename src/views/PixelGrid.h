#pragma once

#include <QPainter>
#include <QRectF>
#include <QTransform>
#include <algorithm>
#include <cmath>

#include "review/Geometry.h"

namespace sonavault {

/// Puts edges on whole pixels of the screen, at whatever scale it is drawn, so that lines are crisp
/// and neighbours leave no gap. Units: points of the painted view
class PixelGrid {
  public:
    /// For as long as the painter's transform stays as it is. It may scale, but not turn.
    explicit PixelGrid(const QPainter& painter) : toDevice_(painter.deviceTransform()) {}

    /// How many pixels a point is wide.
    double scale() const { return toDevice_.m11(); }

    /// Where the view's origin lies on the screen. Units: pixels, and parts of them
    QPointF origin() const { return {toDevice_.dx(), toDevice_.dy()}; }

    double x(double points) const {
        return (std::round(points * toDevice_.m11() + toDevice_.dx()) - toDevice_.dx()) /
               toDevice_.m11();
    }
    double y(double points) const {
        return (std::round(points * toDevice_.m22() + toDevice_.dy()) - toDevice_.dy()) /
               toDevice_.m22();
    }

    /// The box with each edge on the nearest pixel.
    QRectF area(const Box& box) const {
        return {QPointF(x(box.x), y(box.y)), QPointF(x(box.right()), y(box.bottom()))};
    }

    QRectF snapped(const QRectF& box) const {
        return {QPointF(x(box.left()), y(box.top())), QPointF(x(box.right()), y(box.bottom()))};
    }

    /// The width of a line of one point, in whole pixels of the screen. Units: points
    double hairline() const { return thickness(1); }

    /// Where a pen of that width runs so that it fills the outermost pixels inside `box`.
    QRectF outline(const QRectF& box) const {
        const double inset = hairline() / 2;
        return snapped(box).adjusted(inset, inset, -inset, -inset);
    }

    /// The box with a thickness that is the same wherever it stands.
    QRectF line(const Box& box) const {
        return {x(box.x), y(box.y), thickness(box.width), thickness(box.height)};
    }

  private:
    double thickness(double points) const {
        return std::max(1.0, std::round(points * scale())) / scale();
    }

    QTransform toDevice_;
};

}  // namespace sonavault
