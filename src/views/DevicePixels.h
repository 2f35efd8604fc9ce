#pragma once

#include <QPainter>
#include <QRectF>
#include <QWidget>
#include <algorithm>
#include <cmath>

namespace sonavault {

// Lines and fills that stay sharp where a point of the window is not a whole number of the screen's
// pixels.

/// `box` with its edges on the nearest of the screen's pixels.
inline QRectF onDevicePixels(const QPainter& painter, const QRectF& box) {
    const QTransform& toDevice = painter.deviceTransform();
    const QRectF mapped = toDevice.mapRect(box);
    const QRectF whole(QPointF(std::round(mapped.left()), std::round(mapped.top())),
                       QPointF(std::round(mapped.right()), std::round(mapped.bottom())));
    return toDevice.inverted().mapRect(whole);
}

/// The width of a line of one point, in whole pixels of the screen. Units: points
inline double hairline(const QPainter& painter) {
    const double ratio = painter.deviceTransform().m11();
    return std::max(1.0, std::round(ratio)) / ratio;
}

/// Where a line of one point runs so that it fills the outermost pixels inside `box`.
inline QRectF outlineInside(const QPainter& painter, const QRectF& box) {
    const double inset = hairline(painter) / 2;
    return onDevicePixels(painter, box).adjusted(inset, inset, -inset, -inset);
}

}  // namespace sonavault
