#include "views/PassThroughLabel.h"

#include <QPainter>
#include <QTextLayout>

namespace sonavault {

PassThroughLabel::PassThroughLabel(const QFont& font, const QColor& colour, QWidget* parent)
    : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setAlignment(Qt::AlignCenter);
    setFont(font);
    QPalette colours = palette();
    colours.setColor(QPalette::WindowText, colour);
    setPalette(colours);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
}

void PassThroughLabel::showText(const QString& shown) {
    if (shown != text()) {
        setText(shown);
        setAccessibleName(shown);
    }
    setVisible(!shown.isEmpty());
}

QStringList PassThroughLabel::visibleLines() const {
    QTextLayout layout(text(), font());
    layout.beginLayout();
    QTextLine first = layout.createLine();
    if (first.isValid()) first.setLineWidth(width());
    layout.endLayout();
    if (!first.isValid()) return {};
    const QString rest = text().mid(first.textLength());
    QStringList lines{text().left(first.textLength()).trimmed()};
    if (!rest.isEmpty()) lines << fontMetrics().elidedText(rest, Qt::ElideRight, width());
    return lines;
}

void PassThroughLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawText(rect(), Qt::AlignCenter, visibleLines().join(u'\n'));
}

}  // namespace sonavault
