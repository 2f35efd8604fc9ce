#include "shell/AppDelegate.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QMenuBar>
#include <QScreen>

#include "shell/ApplicationIcon.h"
#include "store/Version.h"

namespace sonavault {
namespace {

QString nameAndVersion() {
    return QStringLiteral("Sonavault ") + QString::fromUtf8(kSonavaultVersion);
}

/// Its end is the program's, whatever other window is still open.
class MainWindow final : public QMainWindow {
  protected:
    void closeEvent(QCloseEvent* event) override {
        event->accept();
        QApplication::quit();
    }
};

}  // namespace

QRect firstWindowFrame(const QRect& available, QSize content, QSize least, int menuBar) {
    const QSize bar(0, menuBar);
    const QSize smallest = least + bar;
    QSize size = content + bar;
    if (available.width() >= smallest.width() && available.height() >= smallest.height())
        size = size.boundedTo(available.size());
    QRect frame(QPoint(), size);
    frame.moveCenter(available.center());
    // On a small screen the title must stay within reach.
    frame.moveTop(std::max(frame.top(), available.top()));
    frame.moveLeft(std::max(frame.left(), available.left()));
    return frame;
}

AppDelegate::~AppDelegate() = default;

void AppDelegate::applicationDidFinishLaunching() {
    installDelegateMenu();
    makeWindow();
    viewController_ = std::make_unique<SonavaultViewController>(services_);
    viewController_->onSourceModeChanged = [this] { refreshSourceModeMenuChecks(); };
    window_->setCentralWidget(&viewController_->rootView());
    viewController_->rootView().setFocus();
    updateWindowTitle();
    window_->show();
    window_->activateWindow();
    viewController_->afterWindowReady();
    refreshSourceModeMenuChecks();
}

void AppDelegate::installDelegateMenu() {
    menu_ = buildMainMenu({
        .showAbout = [this] { showAbout(); },
        .quit = [] { QApplication::quit(); },
        .toggleRecording = [this] { menuToggleRecording(); },
        .openLastRecording = [this] { menuOpenLastRecording(); },
        .setSourceLineInput = [this] { menuSetSourceLineInput(); },
        .setSourceCadenzoTCP = [this] { menuSetSourceCadenzoTCP(); },
        .toggleAutoResume = [this] { menuToggleAutoResume(); },
    });
    menu_.autoResumeMenuItem->setChecked(autoResumesOnLaunch(services_.preferences));
}

void AppDelegate::makeWindow() {
    window_ = std::make_unique<MainWindow>();
    window_->setMenuBar(menu_.bar);
    window_->setWindowIcon(applicationIcon());
    window_->setMouseTracking(true);
    window_->setGeometry(
        firstWindowFrame(window_->screen()->availableGeometry(), KeyResponderView::kContentSize,
                         KeyResponderView::kLeastContentSize, menu_.bar->sizeHint().height()));
}

void AppDelegate::updateWindowTitle() {
    window_->setWindowTitle(nameAndVersion());
}

void AppDelegate::refreshSourceModeMenuChecks() {
    if (!menu_.sourceLineInputItem) return;
    std::optional<SVRecorderSourceMode> current;
    if (viewController_) current = viewController_->sourceMode();
    menu_.sourceLineInputItem->setChecked(current == SVRecorderSourceMode::lineInput);
    menu_.sourceCadenzoTCPItem->setChecked(current == SVRecorderSourceMode::cadenzoTCP);
}

void AppDelegate::menuToggleRecording() {
    if (viewController_) viewController_->toggleRecordingFromMenu();
}

void AppDelegate::menuOpenLastRecording() {
    if (viewController_) viewController_->openLastRecordingFromMenu();
}

void AppDelegate::menuSetSourceLineInput() {
    if (viewController_) viewController_->setSourceLineInput();
}

void AppDelegate::menuSetSourceCadenzoTCP() {
    if (viewController_) viewController_->setSourceCadenzoTCP();
}

void AppDelegate::menuToggleAutoResume() {
    const bool resumes = !autoResumesOnLaunch(services_.preferences);
    services_.preferences.setBoolean(kAutoResumeOnLaunchKey, resumes);
    if (menu_.autoResumeMenuItem) menu_.autoResumeMenuItem->setChecked(resumes);
    if (viewController_) viewController_->autoResumeChosen(resumes);
}

void AppDelegate::showAbout() {
    services_.alerts.showModally({.style = Alert::informational,
                                  .message = nameAndVersion(),
                                  .information = QStringLiteral("Your Station's Air Archive\n\n"),
                                  .showsApplicationIcon = true});
}

}  // namespace sonavault
