#pragma once

#include <QList>
#include <QMessageBox>

#include "shell/Alerts.h"

namespace sonavault {

/// The window that a dialog belongs to: the one in use, or else the program's own, so that a dialog
/// that comes while the person works elsewhere can't hide behind it. Null without a window.
QWidget* windowForDialogs();

/// The window of an alert.
///
/// Thread: main.
class AlertBox final : public QMessageBox {
  public:
    explicit AlertBox(const Alert& alert);

    /// Puts a view of fixed size between the text and the buttons. Owns: this box, from here on.
    void addAccessory(QWidget* view);

    /// Gives the index of the button chosen; the last one when the alert ended without a choice,
    /// closed by the person or by the program.
    int showModally();

  private:
    QList<QPushButton*> buttons_;
};

}  // namespace sonavault
