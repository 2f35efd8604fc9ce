#include "views/FlatButton.h"

#include <QPainter>

#include "views/ButtonLook.h"

namespace sonavault {

FlatButton::FlatButton(const QString& title, const QFont& font, QWidget* parent)
    : QPushButton(title, parent) {
    setFont(font);
    setCheckable(true);
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setAccessibleName(title);
}

void FlatButton::paintEvent(QPaintEvent*) {
    constexpr double kRadius = 6;
    QPainter painter(this);
    const ButtonLook look = buttonLook(*this, isChecked());
    paintButtonBody(painter, *this, look, kRadius);
    painter.setPen(look.content);
    painter.drawText(rect(), Qt::AlignCenter, text());
}

}  // namespace sonavault
