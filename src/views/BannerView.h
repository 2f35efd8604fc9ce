#pragma once

#include <QAbstractButton>
#include <QWidget>
#include <functional>

#include "views/LogoView.h"
#include "views/TextView.h"

namespace sonavault {

/// The top of the window: the program's emblem, name and slogan, and the way to its help.
///
/// Thread: main.
class BannerView final : public QWidget {
  public:
    explicit BannerView(QWidget* parent);

    std::function<void()> onHelpClicked;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    LogoView* logo_;
    TextView* title_;
    TextView* slogan_;
    QAbstractButton* helpButton_;
};

}  // namespace sonavault
