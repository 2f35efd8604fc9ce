#include "views/CardsScrollView.h"

#include <QWheelEvent>
#include <algorithm>

namespace sonavault {
namespace {

// What a notch of a mouse wheel is worth. Units: points
constexpr int kNotch = 40;
constexpr int kNotchAngle = 120;

}  // namespace

CardsScrollView::CardsScrollView(QWidget* parent) : QScrollArea(parent) {
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* document = new QWidget;
    setWidget(document);
    // Taking the document, the area gave it a ground.
    document->setAutoFillBackground(false);
    viewport()->setAutoFillBackground(false);
    bar_ = new SlimScrollBar(*verticalScrollBar(), this);
}

void CardsScrollView::setCardsHeight(int height) {
    cardsHeight_ = height;
    fitDocument();
}

void CardsScrollView::fitDocument() {
    widget()->resize(viewport()->width(), std::max(cardsHeight_, viewport()->height()));
}

void CardsScrollView::resizeEvent(QResizeEvent* event) {
    fitDocument();
    QScrollArea::resizeEvent(event);
    bar_->setGeometry(width() - SlimScrollBar::kWidth, 0, SlimScrollBar::kWidth, height());
    bar_->raise();
}

void CardsScrollView::wheelEvent(QWheelEvent* event) {
    const int exact = event->pixelDelta().y();
    const int points = exact != 0 ? exact : event->angleDelta().y() * kNotch / kNotchAngle;
    verticalScrollBar()->setValue(verticalScrollBar()->value() - points);
    event->accept();
}

}  // namespace sonavault
