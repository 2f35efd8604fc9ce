#include "views/ButtonLook.h"

#include "views/Theme.h"

namespace sonavault {
namespace {

ButtonLook plainLook(const QAbstractButton& button) {
    if (!button.isEnabled()) return {whiteLevel(0.96), whiteLevel(0.86), whiteLevel(0.65)};
    if (button.isDown()) return {whiteLevel(0.86), whiteLevel(0.66), whiteLevel(0.1)};
    if (button.underMouse()) return {whiteLevel(0.94), whiteLevel(0.7), whiteLevel(0.1)};
    return {whiteLevel(1), whiteLevel(0.78), whiteLevel(0.2)};
}

ButtonLook emphasisedLook(const QAbstractButton& button) {
    if (!button.isEnabled()) return {{168, 186, 199}, {158, 176, 190}, whiteLevel(0.97)};
    if (button.isDown()) return {{56, 88, 111}, {48, 77, 98}, whiteLevel(1)};
    if (button.underMouse()) return {{84, 124, 152}, {66, 101, 126}, whiteLevel(1)};
    return {kColorAccent, {61, 95, 119}, whiteLevel(1)};
}

}  // namespace

ButtonLook buttonLook(const QAbstractButton& button, bool emphasised) {
    return emphasised ? emphasisedLook(button) : plainLook(button);
}

bool showsFocus(const QWidget& view) {
    return view.hasFocus() && view.window()->testAttribute(Qt::WA_KeyboardFocusChange);
}

void paintButtonBody(QPainter& painter, const QAbstractButton& button, const ButtonLook& look,
                     double radius) {
    painter.setRenderHint(QPainter::Antialiasing);
    // Half a point in, a line of one point covers whole pixels.
    const QRectF edge = QRectF(button.rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.setPen(look.border);
    painter.setBrush(look.ground);
    painter.drawRoundedRect(edge, radius, radius);
    if (!showsFocus(button)) return;
    // Inside the border and in the content's colour it is seen on every ground.
    painter.setPen(QPen(look.content, 1.5));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(edge.adjusted(2.5, 2.5, -2.5, -2.5), radius - 2.5, radius - 2.5);
}

}  // namespace sonavault
