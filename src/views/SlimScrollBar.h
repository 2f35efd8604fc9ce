#pragma once

#include <QPointer>
#include <QScrollBar>

namespace sonavault {

/// A thin bar that lies over what scrolls and takes no room of its own; there is none when all is
/// in sight. It shows and moves another scroll bar, which stays hidden.
///
/// Thread: main.
class SlimScrollBar final : public QWidget {
  public:
    static constexpr int kWidth = 12;

    /// `scrolled` outlives this bar.
    SlimScrollBar(QScrollBar& scrolled, QWidget* parent);

    /// Where the handle stands. Units: pixels of this view
    QRectF handle() const;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

  private:
    void follow();

    QScrollBar& scrolled_;
    bool dragging_ = false;
    double grip_ = 0;  // from the handle's top to where it is held
};

}  // namespace sonavault
