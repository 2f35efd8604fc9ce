#pragma once

#include "views/PlainButton.h"

namespace sonavault {

/// A round button of the transport. Its title is painted as a shape; a screen reader tells its
/// name. A click does not take the keyboard from the timeline.
///
/// Thread: main.
class RoundButton final : public PlainButton {
  public:
    /// `primary`: the one that is used most.
    RoundButton(const QString& symbol, const QString& name, bool primary, QWidget* parent);

    /// Does nothing when it has that symbol already.
    void showSymbol(const QString& symbol, const QString& name);

  protected:
    void paintEvent(QPaintEvent* event) override;
    bool hitButton(const QPoint& point) const override;

  private:
    const bool primary_;
};

}  // namespace sonavault
