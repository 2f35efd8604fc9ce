#pragma once

#include "views/PlainButton.h"

namespace sonavault {

/// The golden button over the timeline that exports what is selected. It casts a shadow on what
/// lies below, which reaches beyond its frame.
///
/// Thread: main.
class ExportSelectionsButton final : public PlainButton {
  public:
    explicit ExportSelectionsButton(QWidget* parent);

    /// Puts the button and its shadow in front of their neighbours.
    void raiseWithShadow();

    void setVisible(bool visible) override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void placeShadow();

    QWidget* const shadow_;
};

}  // namespace sonavault
