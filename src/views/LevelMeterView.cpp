#include "views/LevelMeterView.h"

#include <QPaintEvent>
#include <QPainter>
#include <QPainterPath>

#include "views/Painting.h"

namespace sonavault {
namespace {

/// The part of `bar` between two heights that are counted from its foot. It is wider than the bar,
/// whose outline cuts it off on both sides alike.
QRectF fromBottom(const QRectF& bar, double from, double to) {
    const double top = bar.bottom() - bar.height() * to;
    return {bar.left() - 1, top, bar.width() + 2, bar.height() * (to - from)};
}

}  // namespace

LevelMeterView::LevelMeterView(const QString& channel, QWidget* parent) : QWidget(parent) {
    setAccessibleName(channel);
}

void LevelMeterView::setLevel(float level) {
    level_ = level;
    // Against what is on the screen, not the last value: a slow fade must not be missed for ever.
    if (isVisibleChange(shown_, level)) update();
}

void LevelMeterView::paintEvent(QPaintEvent* event) {
    // A part drawn alone leaves the rest as it was.
    if (event->rect().contains(rect())) shown_ = level_;
    const QRectF bar = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    QPainterPath outline;
    outline.addRoundedRect(bar, width() / 2.0, width() / 2.0);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    // Zones end at whole pixels, so that no ground shines through between them; only the outline
    // is smooth.
    for (const MeterFill& each : meterFills(level_)) {
        painter.setClipRect(fromBottom(bar, each.from, each.to));
        painter.fillPath(outline, toQColor(each.colour));
    }
    painter.setClipping(false);
    painter.setPen(QPen(toQColor(MeterScale::outline), 1));
    painter.drawPath(outline);
}

}  // namespace sonavault
