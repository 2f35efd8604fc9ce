#include "views/TimeAxisView.h"

#include <QFontMetricsF>
#include <algorithm>

#include "review/TimeAxis.h"
#include "views/Painting.h"
#include "views/PixelGrid.h"
#include "views/Theme.h"

namespace sonavault {

void TimeAxisView::paint(QPainter& painter, double zoomMult, Extent exposed) const {
    const double left = std::max(frame_.x, exposed.left);
    const double width = std::min(frame_.right(), exposed.right) - left;
    if (!(width > 0)) return;
    const PixelGrid grid(painter);
    const QRectF ground = grid.area({left, frame_.y, width, frame_.height});
    painter.fillRect(ground, toQColor(kColorTimeAxisBG));
    QRectF rule = grid.line({left, frame_.y, width, 1});
    rule.setRight(ground.right());
    painter.fillRect(rule, toQColor(kColorTimeAxisRule));

    // Of whole pixels: a face for each of a thousand sizes would have to be made at each step of a
    // zoom, and none would be crisp.
    painter.setFont(digitsFont(qRound(axisFontSize(zoomMult))));
    painter.setPen(toQColor(kColorTimeAxisText));
    const QFontMetricsF metrics(painter.font());
    const double labelWidth = metrics.horizontalAdvance(toQString(axisLabelText(0, zoomMult)));
    const Extent inAxis{exposed.left - frame_.x, exposed.right - frame_.x};
    for (const AxisTick& each :
         timeAxisTicks(zoomMult, {frame_.width, frame_.height}, labelWidth, inAxis)) {
        Box line = each.line;
        line.x += frame_.x;
        line.y += frame_.y;
        QRectF tick = grid.line(line);
        tick.setBottom(ground.bottom());
        painter.fillRect(tick, toQColor(kColorTimeAxisTick));
        if (!each.label) continue;
        const QPointF baseline(grid.x(frame_.x + each.label->at.x),
                               grid.y(frame_.y + each.label->at.y + metrics.ascent()));
        painter.drawText(baseline, toQString(each.label->text));
    }
}

}  // namespace sonavault
