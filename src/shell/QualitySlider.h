#pragma once

#include <QSlider>

namespace sonavault {

/// A slider of five places and nothing between them. It paints itself, so that it looks the same on
/// every desktop.
///
/// Thread: main.
class QualitySlider final : public QSlider {
  public:
    explicit QualitySlider(QWidget* parent);

    /// Where the knob stands for that value. Units: pixels from the left
    double placeOf(int value) const;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

  private:
    void moveTo(double x);
};

}  // namespace sonavault
