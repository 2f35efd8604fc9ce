#include "shell/QualitySlider.h"

#include <QMouseEvent>
#include <QPainter>
#include <algorithm>

#include "views/ControlColours.h"

namespace sonavault {
namespace {

constexpr double kKnobRadius = 9;
constexpr double kInset = 10;  // the knob's border and its ring stay inside
constexpr double kTrackHeight = 4;
constexpr double kTickHeight = 7;
constexpr double kTickTop = 18;
constexpr double kTrackMiddle = 10;
constexpr QColor kTrackColour{200, 200, 205};

void drawTrack(QPainter& painter, double left, double right, const QColor& colour) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    const QRectF track(left, kTrackMiddle - kTrackHeight / 2, right - left, kTrackHeight);
    painter.drawRoundedRect(track, kTrackHeight / 2, kTrackHeight / 2);
}

void drawKnob(QPainter& painter, double x, bool pressed, bool ringed) {
    const QPointF centre(x, kTrackMiddle);
    if (ringed) {
        painter.setPen(QPen(kColorFocusRing, 3));
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(centre, kKnobRadius - 0.5, kKnobRadius - 0.5);
    }
    painter.setPen(QPen(kColorControlStroke, 1));
    painter.setBrush(pressed ? kColorControlPressed : kColorControlFace);
    const double radius = ringed ? kKnobRadius - 2 : kKnobRadius - 0.5;
    painter.drawEllipse(centre, radius, radius);
}

}  // namespace

QualitySlider::QualitySlider(QWidget* parent) : QSlider(Qt::Horizontal, parent) {
    setRange(0, 4);
    setSingleStep(1);
    setPageStep(1);
    setTickInterval(1);
    setTickPosition(TicksBelow);
    setFocusPolicy(Qt::StrongFocus);
}

double QualitySlider::placeOf(int value) const {
    const double part = static_cast<double>(value - minimum()) / (maximum() - minimum());
    return kInset + part * (width() - 2 * kInset);
}

void QualitySlider::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    for (int tick = minimum(); tick <= maximum(); ++tick)
        painter.fillRect(QRectF(qRound(placeOf(tick)), kTickTop, 1, kTickHeight),
                         kColorTertiaryLabel);
    const double knob = placeOf(value());
    drawTrack(painter, placeOf(minimum()), placeOf(maximum()), kTrackColour);
    drawTrack(painter, placeOf(minimum()), knob, kColorAccent);
    drawKnob(painter, knob, isSliderDown(), hasFocus());
}

void QualitySlider::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    setSliderDown(true);
    moveTo(event->position().x());
}

void QualitySlider::mouseMoveEvent(QMouseEvent* event) {
    if (isSliderDown()) moveTo(event->position().x());
}

void QualitySlider::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    setSliderDown(false);
    update();
}

// A choice that is stored at once should not come of scrolling by.
void QualitySlider::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

void QualitySlider::moveTo(double x) {
    const double step = placeOf(minimum() + 1) - placeOf(minimum());
    const double places = std::clamp((x - placeOf(minimum())) / step, 0.0,
                                     static_cast<double>(maximum() - minimum()));
    setValue(minimum() + qRound(places));
    update();
}

}  // namespace sonavault
