#pragma once

#include <functional>

class QAction;
class QMenuBar;

namespace sonavault {

/// What the items of the menu bar do.
struct MainMenuActions {
    std::function<void()> showAbout;
    std::function<void()> quit;
    std::function<void()> toggleRecording;
    std::function<void()> openLastRecording;
    std::function<void()> setSourceLineInput;
    std::function<void()> setSourceCadenzoTCP;
    std::function<void()> toggleAutoResume;
};

/// The menu bar, and the items whose check marks change later.
struct MainMenu {
    QMenuBar* bar = nullptr;  ///< Owns: the caller, until a window takes it
    QAction* sourceLineInputItem = nullptr;
    QAction* sourceCadenzoTCPItem = nullptr;
    QAction* autoResumeMenuItem = nullptr;
};

/// Builds all menus. Those of "Edit" act on whatever has the focus, and do nothing where it can't
/// do them.
MainMenu buildMainMenu(const MainMenuActions& actions);

}  // namespace sonavault
