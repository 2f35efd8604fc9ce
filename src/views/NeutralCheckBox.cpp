#include "views/NeutralCheckBox.h"

#include <QPainter>
#include <QPainterPath>
#include <cmath>

#include "views/ButtonLook.h"
#include "views/PixelGrid.h"
#include "views/Theme.h"

namespace sonavault {
namespace {

constexpr int kHeight = 20;
constexpr int kBoxSize = 14;
constexpr int kTextLeft = kBoxSize + 2;

const QColor kColorCheckboxNeutral = whiteLevel(0.65);

QColor boxColour(const QAbstractButton& box) {
    if (!box.isEnabled()) return whiteLevel(0.8);
    if (box.isDown()) return whiteLevel(0.48);
    return isHovered(box) ? whiteLevel(0.56) : kColorCheckboxNeutral;
}

void paintTick(QPainter& painter, const QRectF& box) {
    QPainterPath tick;
    tick.moveTo(box.left() + 3.25, box.top() + 7.25);
    tick.lineTo(box.left() + 5.75, box.top() + 9.9);
    tick.lineTo(box.left() + 10.75, box.top() + 4.25);
    painter.setPen(QPen(Qt::white, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(tick);
}

void paintBox(QPainter& painter, const QAbstractButton& button, const QRectF& box) {
    constexpr double kRadius = 3;
    const QColor colour = boxColour(button);
    painter.setPen(QPen(colour, PixelGrid(painter).hairline()));
    painter.setBrush(button.isChecked() ? colour : QColor(Qt::white));
    painter.drawRoundedRect(PixelGrid(painter).outline(box), kRadius, kRadius);
    if (button.isChecked()) paintTick(painter, box);
}

}  // namespace

NeutralCheckBox::NeutralCheckBox(const QString& title, QWidget* parent) : QCheckBox(title, parent) {
    setFont(interfaceFont(14));
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setAccessibleName(title);
}

QSize NeutralCheckBox::sizeHint() const {
    const double textWidth = QFontMetricsF(font()).horizontalAdvance(text());
    return {kTextLeft + static_cast<int>(std::ceil(textWidth)) + 1, kHeight};
}

void NeutralCheckBox::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintBox(painter, *this, QRectF(0, (height() - kBoxSize) / 2.0, kBoxSize, kBoxSize));
    painter.setPen(whiteLevel(isEnabled() ? 0.15 : 0.5));
    painter.drawText(rect().adjusted(kTextLeft, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter, text());
    paintFocusRing(painter, *this, QRectF(rect()).adjusted(kTextLeft, 0, 0, 0), 3, whiteLevel(0.4));
}

bool NeutralCheckBox::hitButton(const QPoint& point) const {
    return rect().contains(point);
}

}  // namespace sonavault
