#pragma once

#include "views/PlainButton.h"

namespace sonavault {

/// A flat button with rounded corners and a title, which is its name too.
///
/// One that is made checkable is on when the program says so: a click by itself changes nothing
/// about it.
///
/// Thread: main.
class FlatButton final : public PlainButton {
  public:
    FlatButton(const QString& title, const QFont& font, QWidget* parent);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void nextCheckState() override {}
};

}  // namespace sonavault
