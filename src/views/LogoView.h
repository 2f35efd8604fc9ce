#pragma once

#include <QWidget>

namespace sonavault {

/// The application's icon; a painted emblem where there is none.
///
/// Thread: main.
class LogoView final : public QWidget {
  public:
    explicit LogoView(QWidget* parent);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;
};

}  // namespace sonavault
