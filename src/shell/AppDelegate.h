#pragma once

#include <QMainWindow>
#include <QPointer>
#include <QRect>
#include <memory>

#include "shell/MainMenu.h"
#include "shell/ShellServices.h"
#include "shell/SonavaultViewController.h"

namespace sonavault {

/// Where the window stands at first: its content of `content`, centred on the screen's `available`
/// part, and no larger than that unless the screen can't even hold `least`. All with the menu bar,
/// whose height is `menuBar`, on top.
QRect firstWindowFrame(const QRect& available, QSize content, QSize least, int menuBar);

/// The program between the system and its window: launch, menus, title, About.
///
/// Thread: main.
class AppDelegate {
  public:
    explicit AppDelegate(ShellServices services) : services_(std::move(services)) {}
    ~AppDelegate();
    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;

    /// Shows the window and starts everything. Called once.
    void applicationDidFinishLaunching();

    // All null until launch.
    QMainWindow* window() { return window_.get(); }
    SonavaultViewController* viewController() { return viewController_.get(); }
    QAction* sourceLineInputItem() { return menu_.sourceLineInputItem; }
    QAction* sourceCadenzoTCPItem() { return menu_.sourceCadenzoTCPItem; }
    QAction* autoResumeMenuItem() { return menu_.autoResumeMenuItem; }

    // The menu's actions; those that go on to the controller do nothing while there is none.
    void menuToggleRecording();
    void menuOpenLastRecording();
    void menuSetSourceLineInput();
    void menuSetSourceCadenzoTCP();
    void menuToggleAutoResume();
    void showAbout();

    /// The source's check marks follow the preference.
    void refreshSourceModeMenuChecks();

  private:
    void installDelegateMenu();
    void makeWindow();
    void updateWindowTitle();

    ShellServices services_;
    MainMenu menu_;
    std::unique_ptr<QMainWindow> window_;
    std::unique_ptr<SonavaultViewController> viewController_;
};

}  // namespace sonavault
