#include "views/LanesScrollView.h"

#include <QFocusEvent>
#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>
#include <algorithm>

#include "views/OverlayScrollBar.h"
#include "views/Theme.h"
#include "views/WheelPoints.h"

namespace sonavault {

namespace {

/// Shows that the timeline has the keyboard.
class FocusRing final : public QWidget {
  public:
    explicit FocusRing(QWidget* parent) : QWidget(parent) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        hide();
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        constexpr double kThickness = 2;
        QPainter painter(this);
        painter.setPen(QPen(QColor(0, 0, 0, 120), kThickness));
        constexpr double kInset = kThickness / 2;
        painter.drawRect(QRectF(rect()).adjusted(kInset, kInset, -kInset, -kInset));
    }
};

/// As wheelPoints(), but a plain wheel with Shift goes sideways.
QPointF deltaOf(const QWheelEvent& event) {
    const QPointF delta = wheelPoints(event);
    const bool sideways = event.modifiers().testFlag(Qt::ShiftModifier) && delta.x() == 0;
    return sideways ? delta.transposed() : delta;
}

ScrollEvent toScrollEvent(QPointF delta, Qt::ScrollPhase phase) {
    ScrollEvent event{.deltaX = delta.x(), .deltaY = delta.y()};
    switch (phase) {
        case Qt::ScrollBegin:
            event.phase = ScrollPhase::began;
            break;
        case Qt::ScrollUpdate:
            event.phase = ScrollPhase::changed;
            break;
        // Comes once, when also the momentum is over.
        case Qt::ScrollEnd:
            event.phase = ScrollPhase::ended;
            break;
        case Qt::ScrollMomentum:
            event.momentumPhase = ScrollPhase::changed;
            break;
        case Qt::NoScrollPhase:
            break;
    }
    return event;
}

}  // namespace

LanesScrollView::LanesScrollView(TimelineHost& host, QWidget* parent)
    : QScrollArea(parent), host_(host), inner_(new LanesInnerView(host, nullptr)) {
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setLayoutDirection(Qt::LeftToRight);
    QPalette ground = palette();
    ground.setColor(QPalette::Window, Qt::white);
    viewport()->setPalette(ground);
    setWidget(inner_);
    for (const auto orientation : {Qt::Horizontal, Qt::Vertical})
        new OverlayScrollBar(*this, orientation, host.makeMainTimer());
    focusRing_ = new FocusRing(viewport());
}

LanesInnerView& LanesScrollView::lanesInnerView() {
    return *inner_;
}

Size LanesScrollView::clipSize() const {
    return {static_cast<double>(viewport()->width()), static_cast<double>(viewport()->height())};
}

ZoomExtent LanesScrollView::extent() const {
    return {inner_->timelineWidth(), inner_->contentSize().width, clipSize().width};
}

double LanesScrollView::scrollX() const {
    const int shown = horizontalScrollBar()->value();
    return qRound(scrollX_) == shown ? scrollX_ : shown;
}

void LanesScrollView::setScrollX(double x) {
    const ZoomExtent widths = extent();
    scrollX_ = std::clamp(x, 0.0, std::max(0.0, widths.contentWidth - widths.clipWidth));
    // A view that is not shown has not told the bar yet how wide it became.
    horizontalScrollBar()->setRange(0, std::max(0, inner_->width() - viewport()->width()));
    horizontalScrollBar()->setValue(qRound(scrollX_));
}

void LanesScrollView::scrollTo(double x) {
    setScrollX(x);
    verticalScrollBar()->setValue(0);
}

void LanesScrollView::pan(QPointF delta) {
    setScrollX(scrollX() - delta.x());
    verticalScrollBar()->setValue(verticalScrollBar()->value() - qRound(delta.y()));
}

void LanesScrollView::wheelEvent(QWheelEvent* event) {
    const QPointF delta = deltaOf(*event);
    if (axis_.modeOf(toScrollEvent(delta, event->phase())) == ScrollMode::pan)
        pan(delta);
    else
        host_.performZoom(delta.y(), event->position().x() + scrollX());
    inner_->rebuildSummaryBarCursors();
    event->accept();
}

bool LanesScrollView::eventFilter(QObject* watched, QEvent* event) {
    if (watched == inner_) {
        switch (event->type()) {
            case QEvent::FocusIn:
                focusRing_->show();
                break;
            case QEvent::FocusOut:
                focusRing_->hide();
                break;
            default:
                break;
        }
    }
    return QScrollArea::eventFilter(watched, event);
}

bool LanesScrollView::focusNextPrevChild(bool next) {
    // A scroll area brings what has the keyboard into view, which here is the middle of the day.
    const double x = scrollX();
    const int y = verticalScrollBar()->value();
    const bool moved = QScrollArea::focusNextPrevChild(next);
    setScrollX(x);
    verticalScrollBar()->setValue(y);
    return moved;
}

void LanesScrollView::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    focusRing_->setGeometry(viewport()->rect());
}

}  // namespace sonavault
