#include "views/OverlayScrollBar.h"

#include <QHoverEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>

namespace sonavault {
namespace {

constexpr int kReach = 12;  // how far from the edge the thumb can be caught
constexpr double kEndGap = 3;
constexpr double kEdgeGap = 1;
constexpr double kThickness = 4;  // no more than is free below the timeline's hours
constexpr double kThicknessInHand = 8;

bool scrolls(const QScrollBar& bar) {
    return bar.maximum() > bar.minimum();
}

}  // namespace

OverlayScrollBar::OverlayScrollBar(QAbstractScrollArea& area, Qt::Orientation orientation,
                                   std::unique_ptr<MainTimer> timer)
    : QWidget(area.viewport()), area_(area), orientation_(orientation), timer_(std::move(timer)) {
    if (isVertical())
        area_.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    else
        area_.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setAccessibleName(isVertical() ? QStringLiteral("Vertical scroll bar")
                                   : QStringLiteral("Horizontal scroll bar"));
    setCursor(Qt::ArrowCursor);
    setAttribute(Qt::WA_Hover);
    hide();
    connect(&bar(), &QScrollBar::valueChanged, this, [this] { moved(); });
    connect(&bar(), &QScrollBar::rangeChanged, this, [this] { moved(); });
    // The other one may need the corner.
    for (QScrollBar* each : {area_.verticalScrollBar(), area_.horizontalScrollBar()})
        connect(each, &QScrollBar::rangeChanged, this, [this] { place(); });
    // Hovering is told of the content's views too, and even of those that do not track the pointer.
    area_.viewport()->setAttribute(Qt::WA_Hover);
    area_.viewport()->installEventFilter(this);
}

bool OverlayScrollBar::eventFilter(QObject* watched, QEvent* event) {
    // What is left of an area that is being taken apart has no scroll bars any more.
    const bool isWhole = qobject_cast<QAbstractScrollArea*>(parentWidget()->parentWidget());
    if (watched != parentWidget() || !isWhole) return false;
    switch (event->type()) {
        case QEvent::HoverEnter:
        case QEvent::HoverMove:
            setNear(toEdge(static_cast<QHoverEvent*>(event)->position()) < kNear);
            break;
        case QEvent::HoverLeave:
            setNear(false);
            break;
        case QEvent::Resize:
            place();
            break;
        default:
            break;
    }
    return false;
}

QScrollBar& OverlayScrollBar::bar() const {
    return isVertical() ? *area_.verticalScrollBar() : *area_.horizontalScrollBar();
}

ScrollRange OverlayScrollBar::range() const {
    return {.visible = static_cast<double>(bar().pageStep()),
            .hidden = static_cast<double>(bar().maximum() - bar().minimum()),
            .value = static_cast<double>(bar().value() - bar().minimum())};
}

double OverlayScrollBar::track() const {
    const QWidget& view = *area_.viewport();
    const bool sharesCorner =
        scrolls(*area_.verticalScrollBar()) && scrolls(*area_.horizontalScrollBar());
    return (isVertical() ? view.height() : view.width()) - (sharesCorner ? kReach : 0);
}

double OverlayScrollBar::toEdge(QPointF point) const {
    const QWidget& view = *area_.viewport();
    return isVertical() ? view.width() - point.x() : view.height() - point.y();
}

void OverlayScrollBar::moved() {
    linger();
    place();
}

/// Puts the widget where the thumb is, out of sight when all of the content is seen.
void OverlayScrollBar::place() {
    if (const auto thumb = scrollThumb(range(), track())) {
        const QWidget& view = *area_.viewport();
        const int position = qRound(thumb->position);
        const int length = qRound(thumb->position + thumb->length) - position;
        setGeometry(isVertical() ? QRect(view.width() - kReach, position, kReach, length)
                                 : QRect(position, view.height() - kReach, length, kReach));
    }
    showOrHide();
}

void OverlayScrollBar::linger() {
    lingers_ = true;
    timer_->start(kStay, [this] {
        lingers_ = false;
        showOrHide();
    });
}

void OverlayScrollBar::setNear(bool isNear) {
    if (isNear == isNear_) return;
    isNear_ = isNear;
    if (!isNear) linger();
    showOrHide();
}

void OverlayScrollBar::showOrHide() {
    const bool shows = scrolls(bar()) && (isNear_ || lingers_ || caughtAt_);
    if (shows && isHidden()) raise();
    setVisible(shows);
}

void OverlayScrollBar::paintEvent(QPaintEvent*) {
    const double thickness = isInHand() ? kThicknessInHand : kThickness;
    const double across = kReach - kEdgeGap - thickness;
    const QRectF pill = isVertical() ? QRectF(across, kEndGap, thickness, height() - 2 * kEndGap)
                                     : QRectF(kEndGap, across, width() - 2 * kEndGap, thickness);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    // Seen on light grounds and on dark markers alike.
    for (const QColor& colour :
         {QColor(255, 255, 255, 110), QColor(0, 0, 0, isInHand() ? 160 : 100)}) {
        painter.setBrush(colour);
        painter.drawRoundedRect(pill, thickness / 2, thickness / 2);
    }
}

void OverlayScrollBar::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return event->ignore();
    caughtAt_ = along(event->position());
    update();
}

void OverlayScrollBar::mouseMoveEvent(QMouseEvent* event) {
    if (!caughtAt_) return;
    // In the view's coordinates: the thumb itself moves under the pointer.
    const double pointer = along(area_.viewport()->mapFromGlobal(event->globalPosition()));
    const double value = scrollValueAt(pointer - *caughtAt_, range(), track());
    bar().setValue(bar().minimum() + qRound(value));
}

void OverlayScrollBar::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return event->ignore();
    caughtAt_.reset();
    linger();
    update();
}

void OverlayScrollBar::enterEvent(QEnterEvent* event) {
    // A dialog may have taken the release.
    if (!event->buttons().testFlag(Qt::LeftButton)) caughtAt_.reset();
}

}  // namespace sonavault
