#pragma once

#include <QCheckBox>

namespace sonavault {

/// A checkbox in grey, so that no tick competes with the colours of the lanes. A click does not
/// take the keyboard from the timeline.
///
/// Thread: main.
class NeutralCheckBox final : public QCheckBox {
  public:
    NeutralCheckBox(const QString& title, QWidget* parent);

    QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    bool hitButton(const QPoint& point) const override;
};

}  // namespace sonavault
