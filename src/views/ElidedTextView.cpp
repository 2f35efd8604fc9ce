#include "views/ElidedTextView.h"

#include <QPainter>

namespace sonavault {
namespace {

// A sentence of the system's, as the reason of a failure, may come in several lines.
QString onOneLine(QString text) {
    for (QChar& each : text)
        if (each == u'\n' || each == u'\r') each = u' ';
    return text;
}

}  // namespace

ElidedTextView::ElidedTextView(const QFont& font, const QColor& colour, Qt::Alignment alignment,
                               QWidget* parent)
    : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setFont(font);
    setAlignment(alignment | Qt::AlignVCenter);
    QPalette colours = palette();
    colours.setColor(QPalette::WindowText, colour);
    setPalette(colours);
}

void ElidedTextView::showText(const QString& shown) {
    if (shown == text()) return;
    setText(shown);
    setAccessibleName(shown);
}

QString ElidedTextView::visibleText() const {
    return fontMetrics().elidedText(onOneLine(text()), Qt::ElideRight, width());
}

void ElidedTextView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawText(rect(), static_cast<int>(alignment() | Qt::TextSingleLine), visibleText());
}

}  // namespace sonavault
