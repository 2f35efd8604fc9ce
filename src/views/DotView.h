#pragma once

#include <QColor>
#include <QWidget>

namespace sonavault {

/// A round light in one colour.
class DotView final : public QWidget {
  public:
    /// Units: pixels across
    DotView(int size, const QColor& colour, QWidget* parent);

    /// Draws anew only when the colour is another.
    void setColour(const QColor& colour);
    QColor colour() const { return colour_; }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QColor colour_;
};

}  // namespace sonavault
