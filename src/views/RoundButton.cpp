#include "views/RoundButton.h"

#include <QPainter>

#include "views/ButtonLook.h"
#include "views/Theme.h"
#include "views/TransportSymbol.h"

namespace sonavault {

RoundButton::RoundButton(const QString& symbol, const QString& name, bool primary, QWidget* parent)
    : PlainButton(name, parent), primary_(primary) {
    setText(symbol);
    setFont(interfaceFont(18, QFont::Medium));
}

void RoundButton::showSymbol(const QString& symbol, const QString& name) {
    if (symbol == text()) return;
    setText(symbol);
    setAccessibleName(name);
}

void RoundButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const ButtonLook look = buttonLook(*this, primary_);
    paintButtonBody(painter, *this, look, width() / 2.0 - 0.5);
    painter.translate(width() / 2.0, height() / 2.0);
    // A thin line with round joins takes the sharpness off the corners.
    painter.setPen(QPen(look.content, 0.75, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(look.content);
    painter.drawPath(transportSymbol(text()));
}

bool RoundButton::hitButton(const QPoint& point) const {
    const QPointF fromCentre = QPointF(point) + QPointF(0.5, 0.5) - QRectF(rect()).center();
    const double radius = width() / 2.0;
    return QPointF::dotProduct(fromCentre, fromCentre) <= radius * radius;
}

}  // namespace sonavault
