#include "views/PlainButton.h"

#include <QKeyEvent>
#include <QPainter>

#include "views/DevicePixels.h"

namespace sonavault {

PlainButton::PlainButton(const QString& name, QWidget* parent) : QAbstractButton(parent) {
    setAccessibleName(name);
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
}

void PlainButton::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!isReturn) return QAbstractButton::keyPressEvent(event);
    if (!event->isAutoRepeat()) click();
}

void PlainButton::paintFocus(QPainter& painter, double radius, const QColor& colour) const {
    if (!hasFocus()) return;
    painter.setPen(QPen(colour, hairline(painter)));
    painter.setBrush(Qt::NoBrush);
    const QRectF ring = outlineInside(painter, QRectF(rect()).adjusted(2, 2, -2, -2));
    painter.drawRoundedRect(ring, radius, radius);
}

}  // namespace sonavault
