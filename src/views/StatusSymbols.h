#pragma once

#include <QColor>
#include <QPainter>
#include <QRectF>

namespace sonavault {

// The symbols of the status bar, painted, as no font has them. Each is centred in its box.

/// A loudspeaker with a badge that bears an exclamation mark. The gap around the badge shows
/// `ground`. `size` is about its height. Units: points
void paintSpeakerSymbol(QPainter& painter, const QRectF& box, double size, const QColor& colour,
                        const QColor& ground);

/// A gear with a hole in the middle. Units: points
void paintGearSymbol(QPainter& painter, const QRectF& box, double size, const QColor& colour);

}  // namespace sonavault
