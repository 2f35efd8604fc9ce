#include "views/CardControls.h"

#include <QPainter>
#include <QPainterPath>
#include <QWheelEvent>
#include <cmath>

#include "views/ButtonLook.h"
#include "views/ControlColours.h"
#include "views/PixelGrid.h"

namespace sonavault {
namespace {

constexpr double kMarkSize = 18;
constexpr double kMarkInset = 3;  // leaves room for the ring
constexpr int kTextGap = 7;
constexpr double kFieldRadius = 6;

QRectF markRect(const QWidget& control) {
    const double top = std::floor((control.height() - kMarkSize) / 2);
    return {kMarkInset, top, kMarkSize, kMarkSize};
}

void drawRing(QPainter& painter, const QRectF& around, double radius) {
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(kColorFocusRing, 3));
    painter.drawRoundedRect(around, radius, radius);
}

// In the brush that is set.
void drawOutlined(QPainter& painter, const QRectF& box, double radius, const QColor& stroke) {
    painter.setPen(QPen(stroke, PixelGrid(painter).hairline()));
    painter.drawRoundedRect(PixelGrid(painter).outline(box), radius, radius);
}

// The ground of a check mark: a box, or a disc with a radius of half the size.
void drawMarkGround(QPainter& painter, const QAbstractButton& button, double radius) {
    const QRectF box = markRect(button);
    if (showsFocus(button)) drawRing(painter, box.adjusted(-1, -1, 1, 1), radius + 1);
    const QColor face = button.isDown() ? kColorControlPressed : kColorControlFace;
    painter.setBrush(button.isChecked() ? kColorAccent : face);
    drawOutlined(painter, box, radius, button.isChecked() ? kColorAccent : kColorControlStroke);
}

void drawTitle(QPainter& painter, const QAbstractButton& button) {
    const int left = static_cast<int>(kMarkInset + kMarkSize) + kTextGap;
    painter.setPen(kColorLabel);
    painter.setFont(button.font());
    painter.drawText(button.rect().adjusted(left, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter,
                     button.text());
}

void drawTick(QPainter& painter, const QRectF& box) {
    QPainterPath tick(box.topLeft() + QPointF(4.5, 9.5));
    tick.lineTo(box.topLeft() + QPointF(7.8, 12.8));
    tick.lineTo(box.topLeft() + QPointF(13.6, 5.4));
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(Qt::white, 2.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(tick);
}

// Two small arrows, up and down: a choice among neighbours.
void drawArrows(QPainter& painter, QPointF centre) {
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(kColorSecondaryLabel, 1.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    for (const int side : {-1, 1}) {
        QPainterPath arrow(centre + QPointF(-4, side * 3));
        arrow.lineTo(centre + QPointF(0, side * 7));
        arrow.lineTo(centre + QPointF(4, side * 3));
        painter.drawPath(arrow);
    }
}

void drawFace(QPainter& painter, const QWidget& control) {
    const QRectF box(control.rect());
    painter.setBrush(kColorControlFace);
    drawOutlined(painter, box, kFieldRadius, kColorControlStroke);
    if (showsFocus(control))
        drawRing(painter, box.adjusted(1.5, 1.5, -1.5, -1.5), kFieldRadius - 1);
}

void prepare(QAbstractButton& button, const QFont& font) {
    button.setFont(font);
    button.setFocusPolicy(Qt::TabFocus);
    button.setAccessibleName(button.text());
    button.setAttribute(Qt::WA_Hover, false);
}

}  // namespace

CardCheckBox::CardCheckBox(const QString& text, const QFont& font, QWidget* parent)
    : QCheckBox(text, parent) {
    prepare(*this, font);
}

void CardCheckBox::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    drawMarkGround(painter, *this, 4);
    if (isChecked()) drawTick(painter, markRect(*this));
    drawTitle(painter, *this);
}

bool CardCheckBox::hitButton(const QPoint& point) const {
    return rect().contains(point);
}

CardRadioButton::CardRadioButton(const QString& text, const QFont& font, QWidget* parent)
    : QRadioButton(text, parent) {
    prepare(*this, font);
}

void CardRadioButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    drawMarkGround(painter, *this, kMarkSize / 2);
    if (isChecked()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(Qt::white);
        painter.drawEllipse(markRect(*this).center(), 3.5, 3.5);
    }
    drawTitle(painter, *this);
}

bool CardRadioButton::hitButton(const QPoint& point) const {
    return rect().contains(point);
}

CardPopUp::CardPopUp(const QStringList& items, const QFont& font, QWidget* parent)
    : QComboBox(parent) {
    setFont(font);
    addItems(items);
    setFocusPolicy(Qt::TabFocus);
    setMaxVisibleItems(12);
    // The list that pops up is the style's own; this much makes it the same under every style.
    setStyleSheet(
        QStringLiteral("QComboBox { combobox-popup: 0; }"
                       "QAbstractItemView { background: white; color: rgb(38, 38, 38);"
                       "  selection-background-color: rgb(0, 112, 245); selection-color: white;"
                       "  border: 1px solid rgb(176, 176, 182); outline: none; }"
                       "QAbstractItemView::item { min-height: 26px; }"));
}

void CardPopUp::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    drawFace(painter, *this);
    painter.setPen(kColorLabel);
    painter.setFont(font());
    painter.drawText(rect().adjusted(12, 0, -28, 0), Qt::AlignLeft | Qt::AlignVCenter,
                     currentText());
    drawArrows(painter, QPointF(width() - 16, height() / 2.0));
}

void CardPopUp::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

CardTextField::CardTextField(const QString& placeholder, const QFont& font, QWidget* parent)
    : QLineEdit(parent) {
    setFont(font);
    setPlaceholderText(placeholder);
    setAccessibleName(placeholder);
    setFocusPolicy(Qt::StrongFocus);
    setStyleSheet(QStringLiteral(
        "QLineEdit { background: white; color: rgb(38, 38, 38); border-radius: 6px;"
        "  border: 1px solid rgb(176, 176, 182); padding: 1px 8px;"
        "  selection-background-color: rgb(179, 215, 255); selection-color: rgb(38, 38, 38); }"
        "QLineEdit:focus { border: 2px solid rgb(0, 112, 245); padding: 0px 7px; }"));
}

}  // namespace sonavault
