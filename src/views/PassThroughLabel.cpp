#include "views/PassThroughLabel.h"

namespace sonavault {

PassThroughLabel::PassThroughLabel(const QFont& font, const QColor& colour, QWidget* parent)
    : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
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

}  // namespace sonavault
