#include "views/ElidedTextView.h"

#include <QPainter>
#include <cmath>

namespace sonavault {

ElidedTextView::ElidedTextView(const QString& text, const QFont& font, const QColor& colour,
                               QWidget* parent)
    : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setFont(font);
    QPalette colours = palette();
    colours.setColor(QPalette::WindowText, colour);
    setPalette(colours);
    showText(text);
}

void ElidedTextView::showText(const QString& shown) {
    if (shown == text()) return;
    setText(shown);
    setAccessibleName(shown);
}

int ElidedTextView::textWidth() const {
    return static_cast<int>(std::ceil(QFontMetricsF(font()).horizontalAdvance(text())));
}

void ElidedTextView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::WindowText));
    const QString fitting = QFontMetricsF(font()).elidedText(text(), Qt::ElideRight, width());
    painter.drawText(rect(), static_cast<int>(alignment()) | Qt::TextSingleLine, fitting);
}

}  // namespace sonavault
