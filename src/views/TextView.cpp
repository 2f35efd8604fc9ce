#include "views/TextView.h"

namespace sonavault {

TextView::TextView(const QString& text, const QFont& font, const QColor& colour, QWidget* parent)
    : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setFont(font);
    setColour(colour);
    showText(text);
}

void TextView::showText(const QString& shown) {
    if (shown == text()) return;
    setText(shown);
    setAccessibleName(shown);
}

void TextView::setColour(const QColor& colour) {
    if (palette().color(QPalette::WindowText) == colour) return;
    QPalette colours = palette();
    colours.setColor(QPalette::WindowText, colour);
    setPalette(colours);
}

}  // namespace sonavault
