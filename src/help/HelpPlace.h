#pragma once

#include <QApplication>
#include <QScreen>
#include <QWidget>

namespace sonavault {

/// Moves a help window whose content has the given size to the middle of the screen, if there is
/// one. Thread: main
inline void centreOnScreen(QWidget& window, QSize content) {
    const QScreen* screen = QApplication::primaryScreen();
    if (!screen) return;
    QRect frame({}, content);
    frame.moveCenter(screen->availableGeometry().center());
    window.move(frame.topLeft());
}

}  // namespace sonavault
