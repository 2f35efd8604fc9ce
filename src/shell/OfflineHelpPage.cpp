#include "shell/OfflineHelpPage.h"

#include <QKeyEvent>

#include "help/HelpPlace.h"
#include "views/Theme.h"

namespace sonavault {
namespace {

constexpr QSize kContentSize{880, 660};
constexpr QColor kGround{0xf5, 0xf5, 0xf5};
constexpr int kTextSize = 16;  // Units: pixels; a browser's own

}  // namespace

OfflineHelpPage::OfflineHelpPage(const QString& html) {
    setAttribute(Qt::WA_DeleteOnClose);
    setAttribute(Qt::WA_QuitOnClose, false);
    setWindowTitle(QStringLiteral("Sonavault Help"));
    resize(kContentSize);
    setFrameShape(QFrame::NoFrame);
    QPalette colours = palette();
    colours.setColor(QPalette::Base, kGround);
    setPalette(colours);
    document()->setDocumentMargin(60);
    setHtml(html);
    showZoom();
    centreOnScreen(*this, kContentSize);
}

void OfflineHelpPage::keyPressEvent(QKeyEvent* event) {
    const bool zooms =
        event->modifiers().testFlag(Qt::ControlModifier) && zoom_.followKey(event->key());
    if (!zooms) return QTextBrowser::keyPressEvent(event);
    showZoom();
}

void OfflineHelpPage::showZoom() {
    document()->setDefaultFont(interfaceFont(qRound(kTextSize * zoom_.zoomLevel)));
}

}  // namespace sonavault
