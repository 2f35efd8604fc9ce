#pragma once

#include <QTextBrowser>

#include "help/HelpZoom.h"

namespace sonavault {

/// The window that stands in for the help where there is neither its program nor a browser. It is
/// gone when it is closed. The command key with "+" (or "="), "-" and "0" zooms.
///
/// Thread: main.
class OfflineHelpPage final : public QTextBrowser {
  public:
    explicit OfflineHelpPage(const QString& html);

    double zoomLevel() const { return zoom_.zoomLevel; }

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void showZoom();

    HelpZoom zoom_;
};

}  // namespace sonavault
