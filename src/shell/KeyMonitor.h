#pragma once

#include <QKeyEvent>
#include <QObject>
#include <functional>
#include <optional>

#include "review/KeyCommands.h"
#include "views/KeyResponderView.h"

namespace sonavault {

/// A key as the commands know it.
KeyEvent keyEventOf(const QKeyEvent& event);

/// Takes the keys that are commands before any widget or menu sees them, for as long as it lives.
///
/// Thread: main.
class KeyMonitor final : public QObject {
  public:
    /// Both outlive the monitor.
    KeyMonitor(const KeyResponderView& root, KeyCommandHost& host);

  protected:
    bool eventFilter(QObject* receiver, QEvent* event) override;

  private:
    std::optional<KeyCommand> commandOf(QObject* receiver, const QKeyEvent& event) const;

    const KeyResponderView& root_;
    KeyCommandHost& host_;
};

}  // namespace sonavault
