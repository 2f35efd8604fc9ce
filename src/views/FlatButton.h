#pragma once

#include <QPushButton>

namespace sonavault {

/// A flat button with rounded corners and a title. It is on when the program says so: a click by
/// itself changes nothing about it, and does not take the keyboard from the timeline.
///
/// Thread: main.
class FlatButton final : public QPushButton {
  public:
    FlatButton(const QString& title, const QFont& font, QWidget* parent);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void nextCheckState() override {}
};

}  // namespace sonavault
