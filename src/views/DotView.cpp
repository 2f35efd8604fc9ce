#include "views/DotView.h"

#include <QPainter>

namespace sonavault {

DotView::DotView(int size, const QColor& colour, QWidget* parent)
    : QWidget(parent), colour_(colour) {
    setFixedSize(size, size);
}

void DotView::setColour(const QColor& colour) {
    if (colour == colour_) return;
    colour_ = colour;
    update();
}

void DotView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour_);
    painter.drawEllipse(rect());
}

}  // namespace sonavault
