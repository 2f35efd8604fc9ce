#pragma once

#include <QWidget>

#include "views/DotView.h"
#include "views/TextView.h"

namespace sonavault {

/// The black line at the window's foot: the latest sentence for the person at the desk, and whether
/// the automation is connected.
class StatusBarView final : public QWidget {
  public:
    static constexpr int kStatusBarHeight = 40;

    explicit StatusBarView(QWidget* parent);

    TextView& statusBarText() { return *text_; }
    DotView& connectionDot() { return *dot_; }

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    TextView* text_;
    DotView* dot_;
};

}  // namespace sonavault
