#include "views/SlimScrollBar.h"

#include <QMouseEvent>
#include <QPainter>
#include <algorithm>

namespace sonavault {
namespace {

constexpr double kHandleWidth = 6;
constexpr double kLeastHandle = 30;
constexpr double kMargin = 3;
constexpr QColor kHandleColour{0, 0, 0, 95};
constexpr QColor kHeldColour{0, 0, 0, 140};

}  // namespace

SlimScrollBar::SlimScrollBar(QScrollBar& scrolled, QWidget* parent)
    : QWidget(parent), scrolled_(scrolled) {
    setFocusPolicy(Qt::NoFocus);
    connect(&scrolled, &QAbstractSlider::valueChanged, this, [this] { update(); });
    connect(&scrolled, &QAbstractSlider::rangeChanged, this, [this] { follow(); });
    follow();
}

void SlimScrollBar::follow() {
    setVisible(scrolled_.maximum() > scrolled_.minimum());
    update();
}

QRectF SlimScrollBar::handle() const {
    const double range = scrolled_.maximum() - scrolled_.minimum();
    const double page = scrolled_.pageStep();
    const double track = height() - 2 * kMargin;
    if (range <= 0 || track <= 0) return {};
    const double length = std::min(track, std::max(kLeastHandle, track * page / (range + page)));
    const double part = (scrolled_.value() - scrolled_.minimum()) / range;
    return {width() - kHandleWidth - kMargin, kMargin + part * (track - length), kHandleWidth,
            length};
}

void SlimScrollBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(dragging_ ? kHeldColour : kHandleColour);
    painter.drawRoundedRect(handle(), kHandleWidth / 2, kHandleWidth / 2);
}

void SlimScrollBar::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    const QRectF box = handle();
    const double y = event->position().y();
    if (y < box.top() || y > box.bottom()) {
        const auto page =
            y < box.top() ? QAbstractSlider::SliderPageStepSub : QAbstractSlider::SliderPageStepAdd;
        scrolled_.triggerAction(page);
        return;
    }
    dragging_ = true;
    grip_ = y - box.top();
    update();
}

void SlimScrollBar::mouseMoveEvent(QMouseEvent* event) {
    const double room = height() - 2 * kMargin - handle().height();
    if (!dragging_ || room <= 0) return;
    const double part = (event->position().y() - grip_ - kMargin) / room;
    const int range = scrolled_.maximum() - scrolled_.minimum();
    scrolled_.setValue(scrolled_.minimum() + qRound(std::clamp(part, 0.0, 1.0) * range));
}

void SlimScrollBar::mouseReleaseEvent(QMouseEvent*) {
    dragging_ = false;
    update();
}

}  // namespace sonavault
