#include "shell/TextView.h"

namespace sonavault {

TextView::TextView(const QString& text, const QFont& font, const QColor& colour, QWidget* parent)
    : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setFont(font);
    QPalette colours = palette();
    colours.setColor(QPalette::WindowText, colour);
    setPalette(colours);
    showText(text);
}

void TextView::showText(const QString& shown) {
    if (shown == text()) return;
    setText(shown);
    setAccessibleName(shown);
}

}  // namespace sonavault
