#include "help/SonavaultHelpWindow.h"

#include <QKeyEvent>
#include <QWebEngineLoadingInfo>
#include <QWebEnginePage>
#include <QWebEngineSettings>

#include "help/HelpPage.h"
#include "help/HelpPlace.h"

namespace sonavault {
namespace {

constexpr QSize kContentSize{880, 660};

}  // namespace

SonavaultHelpWindow::SonavaultHelpWindow() : helpWebView_(new QWebEngineView(this)) {
    setWindowTitle(QStringLiteral("Sonavault Help"));
    resize(kContentSize);
    helpWebView_->settings()->setAttribute(QWebEngineSettings::ErrorPageEnabled, false);
    connect(helpWebView_->page(), &QWebEnginePage::loadingChanged, this,
            &SonavaultHelpWindow::loadingChanged);
    // Another page is another zoom to the engine; to the person it is the same window.
    connect(helpWebView_, &QWebEngineView::loadFinished, this,
            [this] { helpWebView_->setZoomFactor(zoom_.zoomLevel); });
    // The page has the keyboard, and it would see a key before its window does.
    qApp->installEventFilter(this);
    centreOnScreen(*this, kContentSize);
}

SonavaultHelpWindow::~SonavaultHelpWindow() {
    qApp->removeEventFilter(this);
}

void SonavaultHelpWindow::load(const QUrl& address) {
    address_ = address;
    helpWebView_->load(address);
}

void SonavaultHelpWindow::bringToFront() {
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

bool SonavaultHelpWindow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress || !watched->isWidgetType()) return false;
    if (static_cast<QWidget*>(watched)->window() != this) return false;
    const auto* key = static_cast<const QKeyEvent*>(event);
    if (!key->modifiers().testFlag(Qt::ControlModifier)) return false;
    if (!zoom_.followKey(key->key())) return false;
    helpWebView_->setZoomFactor(zoom_.zoomLevel);
    return true;
}

void SonavaultHelpWindow::resizeEvent(QResizeEvent*) {
    helpWebView_->setGeometry(rect());
}

void SonavaultHelpWindow::loadingChanged(const QWebEngineLoadingInfo& info) {
    if (info.status() != QWebEngineLoadingInfo::LoadFailedStatus) return;
    // The page that stands in for another has none to stand in for it.
    if (info.url().scheme() == QStringLiteral("data")) return;
    // The site did answer, with a page that says what is amiss.
    if (info.errorDomain() == QWebEngineLoadingInfo::HttpStatusCodeDomain) return;
    loadFallbackPage(info.errorString());
}

void SonavaultHelpWindow::loadFallbackPage(const QString& error) {
    const std::string site = helpSite(address_.toString().toStdString());
    helpWebView_->setHtml(QString::fromStdString(fallbackPage(site, error.toStdString())));
}

}  // namespace sonavault
