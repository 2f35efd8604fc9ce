#include "views/TimelineScrollThumb.h"

#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <chrono>
#include <cmath>

namespace sonavault {

namespace {

constexpr int kWidth = 12;     // what the pointer can take hold of
constexpr int kThickness = 4;  // what is seen of it: no more than is free below the hours
constexpr int kThicknessInHand = 8;
constexpr int kFromEdge = 1;   // between that and the parent's edge
constexpr int kFromEnds = 3;   // of the track
constexpr double kLeast = 36;  // length
constexpr double kNear = 24;   // from the parent's edge
constexpr std::chrono::milliseconds kLingers{900};

}  // namespace

TimelineScrollThumb::TimelineScrollThumb(QScrollBar& bar, std::unique_ptr<MainTimer> timer,
                                         QWidget* parent)
    : QWidget(parent), bar_(bar), timer_(std::move(timer)) {
    setAccessibleName(horizontal() ? QStringLiteral("Horizontal scroll bar")
                                   : QStringLiteral("Vertical scroll bar"));
    setCursor(Qt::ArrowCursor);
    hide();
    connect(&bar_, &QScrollBar::valueChanged, this, [this] { moved(); });
    connect(&bar_, &QScrollBar::rangeChanged, this, [this] { moved(); });
}

double TimelineScrollThumb::trackLength() const {
    const QSize room = parentWidget()->size();
    // The corner is left to neither, so that the two never meet.
    return std::max(0, (horizontal() ? room.width() : room.height()) - 2 * kFromEnds - kWidth);
}

double TimelineScrollThumb::thumbLength() const {
    const double content = bar_.maximum() - bar_.minimum() + bar_.pageStep();
    const double share = content > 0 ? bar_.pageStep() / content : 1;
    return std::min(trackLength(), std::max(kLeast, trackLength() * share));
}

void TimelineScrollThumb::follow() {
    const double range = bar_.maximum() - bar_.minimum();
    const double run = trackLength() - thumbLength();
    const double place = range > 0 ? (bar_.value() - bar_.minimum()) / range * run : 0;
    const int at = kFromEnds + qRound(place);
    const int length = qRound(thumbLength());
    const QSize room = parentWidget()->size();
    setGeometry(horizontal() ? QRect(at, room.height() - kWidth, length, kWidth)
                             : QRect(room.width() - kWidth, at, kWidth, length));
    showOrHide();
}

void TimelineScrollThumb::moved() {
    linger();
    follow();
}

void TimelineScrollThumb::linger() {
    lingers_ = true;
    timer_->start(kLingers, [this] {
        lingers_ = false;
        showOrHide();
    });
}

void TimelineScrollThumb::pointerAt(QPointF place) {
    const QSize room = parentWidget()->size();
    setNear((horizontal() ? room.height() - place.y() : room.width() - place.x()) < kNear);
}

void TimelineScrollThumb::pointerGone() {
    // Maybe only onto this handle, which must not vanish before the pointer arrives.
    if (isVisible()) linger();
    setNear(false);
}

void TimelineScrollThumb::setNear(bool isNear) {
    if (isNear == near_) return;
    near_ = isNear;
    showOrHide();
}

void TimelineScrollThumb::showOrHide() {
    const bool scrolls = bar_.maximum() > bar_.minimum();
    setVisible(scrolls && (near_ || lingers_ || over_ || held_));
}

void TimelineScrollThumb::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool strong = over_ || held_;
    const int thickness = strong ? kThicknessInHand : kThickness;
    const int from = kWidth - kFromEdge - thickness;
    const QRectF pill =
        horizontal() ? QRectF(0, from, width(), thickness) : QRectF(from, 0, thickness, height());
    const double radius = thickness / 2.0;
    // Seen on the light axis and on dark markers alike.
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(255, 255, 255, 110));
    painter.drawRoundedRect(pill, radius, radius);
    painter.setBrush(QColor(0, 0, 0, strong ? 160 : 100));
    painter.drawRoundedRect(pill, radius, radius);
}

void TimelineScrollThumb::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return event->ignore();
    held_ = true;
    heldAt_ = along(event->position());
    update();
}

void TimelineScrollThumb::mouseMoveEvent(QMouseEvent* event) {
    if (!held_) return;
    const double run = trackLength() - thumbLength();
    if (!(run > 0)) return;
    const double place = along(mapToParent(event->position())) - heldAt_ - kFromEnds;
    const double share = std::clamp(place / run, 0.0, 1.0);
    bar_.setValue(bar_.minimum() + qRound(share * (bar_.maximum() - bar_.minimum())));
}

void TimelineScrollThumb::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return event->ignore();
    held_ = false;
    update();
    showOrHide();
}

void TimelineScrollThumb::enterEvent(QEnterEvent* event) {
    over_ = true;
    // A dialog may have taken the release.
    if (!event->buttons().testFlag(Qt::LeftButton)) held_ = false;
    update();
    showOrHide();
}

void TimelineScrollThumb::leaveEvent(QEvent*) {
    over_ = false;
    linger();
    update();
}

}  // namespace sonavault
