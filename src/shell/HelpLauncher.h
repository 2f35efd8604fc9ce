#pragma once

#include <QPointer>
#include <QProcess>
#include <QString>
#include <QUrl>
#include <functional>
#include <memory>

#include "shell/OfflineHelpPage.h"

namespace sonavault {

/// What the help is shown with.
struct HelpServices {
    QString program;  ///< the file of the help's own program; empty where there is none
    QUrl address;     ///< of the online documentation
    std::function<bool(const QUrl&)> openInBrowser;  ///< false: it can't be opened

    /// This machine's: the help's program lies beside ours or among the commands.
    static HelpServices ofThisMachine();
};

/// Opens the help: in a window of a process of its own, which a recorder neither carries nor waits
/// for; where that can't be had, in the system's browser; and where there is none, as a page that
/// says so.
///
/// Thread: main.
class HelpLauncher {
  public:
    explicit HelpLauncher(HelpServices services);

    /// Ends the help's process, if one runs. It also ends by itself when this program does.
    ~HelpLauncher();
    HelpLauncher(const HelpLauncher&) = delete;
    HelpLauncher& operator=(const HelpLauncher&) = delete;

    /// Opens the help, or brings it to the front as it stands.
    void helpClicked();

    /// Whether the help's own process runs.
    bool isRunning() const;

    /// The page that says that there is no help, while it is open.
    OfflineHelpPage* offlinePage() const { return offlinePage_; }

  private:
    void start();
    void ended();
    void openElsewhere(const QString& error);
    void showOfflinePage(const QString& error);

    const HelpServices services_;
    std::unique_ptr<QProcess> process_;
    bool wasShown_ = false;
    bool isRaiseAnswered_ = true;
    QPointer<OfflineHelpPage> offlinePage_;
};

}  // namespace sonavault
