#pragma once

#include <QWebEngineView>
#include <QWidget>

#include "help/HelpZoom.h"

class QWebEngineLoadingInfo;

namespace sonavault {

/// The online documentation, or a page that says that it can't be loaded. The command key with
/// "+" (or "="), "-" and "0" zooms.
///
/// Thread: main.
class SonavaultHelpWindow final : public QWidget {
  public:
    SonavaultHelpWindow();
    ~SonavaultHelpWindow() override;

    void load(const QUrl& address);
    void bringToFront();

    double zoomLevel() const { return zoom_.zoomLevel; }
    QWebEngineView& helpWebView() { return *helpWebView_; }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void loadingChanged(const QWebEngineLoadingInfo& info);
    void loadFallbackPage(const QString& error);

    QWebEngineView* helpWebView_;
    HelpZoom zoom_;
    QUrl address_;
};

}  // namespace sonavault
