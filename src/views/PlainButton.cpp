#include "views/PlainButton.h"

#include <QKeyEvent>

namespace sonavault {

PlainButton::PlainButton(const QString& name, QWidget* parent) : QAbstractButton(parent) {
    setAccessibleName(name);
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
}

void PlainButton::keyPressEvent(QKeyEvent* event) {
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!isReturn) return QAbstractButton::keyPressEvent(event);
    if (!event->isAutoRepeat()) click();
}

}  // namespace sonavault
