#pragma once

#include <QAbstractButton>

namespace sonavault {

/// A button that paints itself, as ButtonLook.h has it. A click leaves the keyboard where it is;
/// who reaches it with the Tab key presses it with Return as well as with the space bar.
///
/// Thread: main.
class PlainButton : public QAbstractButton {
  public:
    /// `name` is what a screen reader calls it.
    PlainButton(const QString& name, QWidget* parent);

  protected:
    void keyPressEvent(QKeyEvent* event) override;
};

}  // namespace sonavault
