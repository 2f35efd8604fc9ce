#include "views/OverlayScrollBar.h"

#include <QEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>

namespace sonavault {
namespace {

constexpr int kReach = 12;  // how far from the edge the thumb can be caught
constexpr double kEdgeGap = 3;
constexpr double kThickness = 6;
constexpr QColor kColorThumb{0, 0, 0, 90};
constexpr QColor kColorThumbCaught{0, 0, 0, 140};
constexpr QColor kColorThumbRim{255, 255, 255, 70};  // it is to be seen on dark content too

}  // namespace

OverlayScrollBar::OverlayScrollBar(QAbstractScrollArea& area, Qt::Orientation orientation,
                                   std::chrono::milliseconds stay)
    : QWidget(&area), area_(area), orientation_(orientation) {
    if (orientation_ == Qt::Vertical)
        area_.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    else
        area_.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setAccessibleName(QStringLiteral("Scroll bar"));
    setCursor(Qt::ArrowCursor);
    hideTimer_.setSingleShot(true);
    hideTimer_.setInterval(stay);
    connect(&hideTimer_, &QTimer::timeout, this, [this] { hideIfIdle(); });
    connect(&bar(), &QScrollBar::valueChanged, this, [this] { reveal(); });
    connect(&bar(), &QScrollBar::rangeChanged, this, [this] { place(); });
    area_.installEventFilter(this);
    hide();
}

bool OverlayScrollBar::eventFilter(QObject* watched, QEvent* event) {
    if (watched != &area_) return false;
    if (event->type() == QEvent::Enter) {
        isPointerOverArea_ = true;
        reveal();
    } else if (event->type() == QEvent::Leave) {
        isPointerOverArea_ = false;
        hideTimer_.start();
    } else if (event->type() == QEvent::Resize) {
        place();
    }
    return false;
}

QScrollBar& OverlayScrollBar::bar() const {
    return orientation_ == Qt::Vertical ? *area_.verticalScrollBar() : *area_.horizontalScrollBar();
}

ScrollRange OverlayScrollBar::range() const {
    return {.visible = static_cast<double>(bar().pageStep()),
            .hidden = static_cast<double>(bar().maximum() - bar().minimum()),
            .value = static_cast<double>(bar().value() - bar().minimum())};
}

double OverlayScrollBar::track() const {
    return orientation_ == Qt::Vertical ? area_.height() : area_.width();
}

double OverlayScrollBar::along(QPointF point) const {
    return orientation_ == Qt::Vertical ? point.y() : point.x();
}

/// Puts the widget where the thumb is, out of sight when all of the content is seen.
void OverlayScrollBar::place() {
    const auto thumb = scrollThumb(range(), track());
    if (!thumb) {
        hide();
        return;
    }
    const int position = qRound(thumb->position);
    const int length = qRound(thumb->position + thumb->length) - position;
    if (orientation_ == Qt::Vertical)
        setGeometry(area_.width() - kReach, position, kReach, length);
    else
        setGeometry(position, area_.height() - kReach, length, kReach);
}

void OverlayScrollBar::reveal() {
    place();
    if (!scrollThumb(range(), track())) return;
    raise();
    show();
    hideTimer_.start();
}

void OverlayScrollBar::hideIfIdle() {
    if (!isPointerOverArea_ && !caughtAt_) hide();
}

void OverlayScrollBar::paintEvent(QPaintEvent*) {
    const double farEdge = kReach - kEdgeGap - kThickness;
    const QRectF thumb = orientation_ == Qt::Vertical
                             ? QRectF(farEdge, kEdgeGap, kThickness, height() - 2 * kEdgeGap)
                             : QRectF(kEdgeGap, farEdge, width() - 2 * kEdgeGap, kThickness);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(kColorThumbRim, 1));
    painter.setBrush(caughtAt_ ? kColorThumbCaught : kColorThumb);
    painter.drawRoundedRect(thumb, kThickness / 2, kThickness / 2);
}

void OverlayScrollBar::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    caughtAt_ = along(event->position());
    update();
}

void OverlayScrollBar::mouseMoveEvent(QMouseEvent* event) {
    if (!caughtAt_) return;
    // In the area's coordinates: the thumb itself moves under the pointer.
    const double pointer = along(area_.mapFromGlobal(event->globalPosition()));
    const double value = scrollValueAt(pointer - *caughtAt_, range(), track());
    bar().setValue(bar().minimum() + qRound(value));
}

void OverlayScrollBar::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    caughtAt_.reset();
    hideTimer_.start();
    update();
}

}  // namespace sonavault
