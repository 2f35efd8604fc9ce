#include "views/PlayheadView.h"

#include <QPolygonF>
#include <cmath>

#include "review/MarkerLook.h"
#include "review/TimelineRows.h"
#include "views/Painting.h"
#include "views/PixelGrid.h"

namespace sonavault {

QRegion PlayheadView::covered() const {
    // On a scaled screen a line may take a part of one point more on either side.
    constexpr int kMargin = 2;
    const auto around = [](const QRectF& rect) {
        return rect.toAlignedRect().adjusted(-kMargin, -kMargin, kMargin, kMargin);
    };
    QRectF cap;
    for (const Point& each : playheadCap(frame_.width))
        cap = cap.united(QRectF(frame_.x + each.x - 0.5, frame_.y + each.y - 0.5, 1, 1));
    return QRegion(around(toQRectF(frame_))) + around(cap);
}

void PlayheadView::paint(QPainter& painter) const {
    const PixelGrid grid(painter);
    QRectF line = grid.line(frame_);
    line.setBottom(grid.y(frame_.bottom()));
    const QColor colour = toQColor(kColorPlayhead);
    painter.fillRect(line, colour);
    QPolygonF cap;
    for (const Point& each : playheadCap(line.width()))
        cap.append({line.left() + each.x, line.top() + each.y});
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawPolygon(cap);
    painter.restore();
}

}  // namespace sonavault
