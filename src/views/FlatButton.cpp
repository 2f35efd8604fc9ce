#include "views/FlatButton.h"

#include "views/ButtonLook.h"

namespace sonavault {

FlatButton::FlatButton(const QString& title, const QFont& font, QWidget* parent)
    : PlainButton(title, parent) {
    setText(title);
    setFont(font);
}

void FlatButton::paintEvent(QPaintEvent*) {
    constexpr double kRadius = 6;
    paintTitleButton(*this, buttonLook(*this, isChecked()), kRadius);
}

}  // namespace sonavault
