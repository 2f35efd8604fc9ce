#include "shell/MainMenu.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <QWidget>

#include "links/StationPorts.h"

namespace sonavault {
namespace {

/// Calls `slot` of the widget that has the focus, if that knows how to.
void sendToFirstResponder(const char* slot) {
    QWidget* responder = QApplication::focusWidget();
    if (!responder) return;
    const QByteArray signature = QByteArray(slot) + "()";
    if (responder->metaObject()->indexOfMethod(signature) >= 0)
        QMetaObject::invokeMethod(responder, slot);
}

QAction* addItem(QMenu& menu, const char* title, const QKeySequence& key,
                 const std::function<void()>& action) {
    QAction* item = menu.addAction(QString::fromUtf8(title));
    item->setShortcut(key);
    // Also while a window beside the main one, as that of the settings, is in front.
    item->setShortcutContext(Qt::ApplicationShortcut);
    // A key held too long must not switch recording off again.
    item->setAutoRepeat(false);
    // The texts must not make an item move into another menu, as some desktops do for a "Quit".
    item->setMenuRole(QAction::NoRole);
    QObject::connect(item, &QAction::triggered, item, [action] { action(); });
    return item;
}

QAction* addCheckedItem(QMenu& menu, const QString& title, const std::function<void()>& action) {
    QAction* item = addItem(menu, "", {}, action);
    item->setText(title);
    item->setCheckable(true);
    return item;
}

QAction* addEditItem(QMenu& menu, const char* title, const QKeySequence& key, const char* slot) {
    return addItem(menu, title, key, [slot] { sendToFirstResponder(slot); });
}

void addApplicationMenu(QMenuBar& bar, const MainMenuActions& actions) {
    QMenu& menu = *bar.addMenu(QStringLiteral("Sonavault"));
    addItem(menu, "About Sonavault", {}, actions.showAbout);
    menu.addSeparator();
    addItem(menu, "Quit Sonavault", Qt::CTRL | Qt::Key_Q, actions.quit);
}

void addEditMenu(QMenuBar& bar) {
    QMenu& menu = *bar.addMenu(QStringLiteral("Edit"));
    // Held down, these two go on step by step.
    addEditItem(menu, "Undo", Qt::CTRL | Qt::Key_Z, "undo")->setAutoRepeat(true);
    addEditItem(menu, "Redo", Qt::CTRL | Qt::SHIFT | Qt::Key_Z, "redo")->setAutoRepeat(true);
    menu.addSeparator();
    addEditItem(menu, "Cut", Qt::CTRL | Qt::Key_X, "cut");
    addEditItem(menu, "Copy", Qt::CTRL | Qt::Key_C, "copy");
    addEditItem(menu, "Paste", Qt::CTRL | Qt::Key_V, "paste");
    addEditItem(menu, "Select All", Qt::CTRL | Qt::Key_A, "selectAll");
}

void addSourceMenu(QMenu& recording, const MainMenuActions& actions, MainMenu& made) {
    QMenu& menu = *recording.addMenu(QStringLiteral("Source"));
    made.sourceLineInputItem = addCheckedItem(
        menu, QStringLiteral("Line Input (default audio device)"), actions.setSourceLineInput);
    made.sourceCadenzoTCPItem = addCheckedItem(
        menu, QStringLiteral("Cadenzo TCP (port %1)").arg(kAudioPort), actions.setSourceCadenzoTCP);
    auto* choices = new QActionGroup(&menu);
    // None is marked until it is known which one is chosen.
    choices->setExclusionPolicy(QActionGroup::ExclusionPolicy::ExclusiveOptional);
    choices->addAction(made.sourceLineInputItem);
    choices->addAction(made.sourceCadenzoTCPItem);
}

void addRecordingMenu(QMenuBar& bar, const MainMenuActions& actions, MainMenu& made) {
    QMenu& menu = *bar.addMenu(QStringLiteral("Recording"));
    addItem(menu, "Start / Stop Recording", Qt::CTRL | Qt::Key_R, actions.toggleRecording);
    addItem(menu, "Open Last Recording", {}, actions.openLastRecording);
    menu.addSeparator();
    addSourceMenu(menu, actions, made);
    menu.addSeparator();
    made.autoResumeMenuItem = addCheckedItem(
        menu, QStringLiteral("Auto-resume Recording on Launch"), actions.toggleAutoResume);
}

}  // namespace

MainMenu buildMainMenu(const MainMenuActions& actions) {
    MainMenu made;
    made.bar = new QMenuBar;
    // Above the content of its own window, also on desktops that would show it elsewhere.
    made.bar->setNativeMenuBar(false);
    addApplicationMenu(*made.bar, actions);
    addEditMenu(*made.bar);
    addRecordingMenu(*made.bar, actions, made);
    return made;
}

}  // namespace sonavault
