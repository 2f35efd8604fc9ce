#pragma once

#include <QScrollArea>

#include "views/WheelPoints.h"

namespace sonavault {

/// What the cards are scrolled in: no border, no ground, and a scroll bar that takes no room.
///
/// Thread: main.
class CardsScrollView final : public QScrollArea {
  public:
    explicit CardsScrollView(QWidget* parent);

    /// The height of all cards together; a short list is as high as the view, so that it stands at
    /// the top.
    void setCardsHeight(int height);

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

  private:
    void fitDocument();

    int cardsHeight_ = 0;
    WholePoints wheel_;
};

}  // namespace sonavault
