#include "views/ButtonLook.h"

#include "views/PixelGrid.h"
#include "views/Theme.h"

namespace sonavault {
namespace {

ButtonLook plainLook(const QAbstractButton& button) {
    if (!button.isEnabled()) return {whiteLevel(0.96), whiteLevel(0.86), whiteLevel(0.65)};
    if (button.isDown()) return {whiteLevel(0.86), whiteLevel(0.66), whiteLevel(0.1)};
    if (isHovered(button)) return {whiteLevel(0.94), whiteLevel(0.7), whiteLevel(0.1)};
    return {whiteLevel(1), whiteLevel(0.78), whiteLevel(0.2)};
}

ButtonLook emphasisedLook(const QAbstractButton& button) {
    if (!button.isEnabled()) return {{168, 186, 199}, {158, 176, 190}, whiteLevel(0.97)};
    if (button.isDown()) return {{56, 88, 111}, {48, 77, 98}, whiteLevel(1)};
    if (isHovered(button)) return {{84, 124, 152}, {66, 101, 126}, whiteLevel(1)};
    return {kColorButtonOn, {61, 95, 119}, whiteLevel(1)};
}

}  // namespace

bool isHovered(const QAbstractButton& button) {
    return button.isEnabled() && button.underMouse();
}

ButtonLook buttonLook(const QAbstractButton& button, bool emphasised) {
    return emphasised ? emphasisedLook(button) : plainLook(button);
}

bool showsFocus(const QWidget& view) {
    return view.hasFocus() && view.window()->testAttribute(Qt::WA_KeyboardFocusChange);
}

void paintFocusRing(QPainter& painter, const QWidget& view, const QRectF& box, double radius,
                    const QColor& colour) {
    if (!showsFocus(view)) return;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(colour, PixelGrid(painter).hairline()));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(PixelGrid(painter).outline(box), radius, radius);
}

void paintButtonBody(QPainter& painter, const QAbstractButton& button, const ButtonLook& look,
                     double radius) {
    constexpr double kRingInset = 2;
    const QRectF box(button.rect());
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(look.border, PixelGrid(painter).hairline()));
    painter.setBrush(look.ground);
    painter.drawRoundedRect(PixelGrid(painter).outline(box), radius, radius);
    // Inside the border and in the content's colour it is seen on every ground.
    paintFocusRing(painter, button, box.adjusted(kRingInset, kRingInset, -kRingInset, -kRingInset),
                   radius - kRingInset, look.content);
}

void paintTitleButton(QAbstractButton& button, const ButtonLook& look, double radius) {
    QPainter painter(&button);
    paintButtonBody(painter, button, look, radius);
    painter.setPen(look.content);
    painter.drawText(button.rect(), Qt::AlignCenter, button.text());
}

}  // namespace sonavault
