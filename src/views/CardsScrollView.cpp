#include "views/CardsScrollView.h"

#include <QScrollBar>
#include <algorithm>

#include "views/OverlayScrollBar.h"

namespace sonavault {

CardsScrollView::CardsScrollView(QWidget* parent) : QScrollArea(parent) {
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* document = new QWidget;
    setWidget(document);
    // Taking the document, the area gave it a ground.
    document->setAutoFillBackground(false);
    viewport()->setAutoFillBackground(false);
    new OverlayScrollBar(*this, Qt::Vertical);
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
}

void CardsScrollView::wheelEvent(QWheelEvent* event) {
    const int points = wheel_.take(wheelPoints(*event).y());
    verticalScrollBar()->setValue(verticalScrollBar()->value() - points);
    event->accept();
}

}  // namespace sonavault
