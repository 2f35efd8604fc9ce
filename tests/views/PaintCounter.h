#pragma once

#include <QCoreApplication>
#include <QEvent>
#include <QWidget>
#include <utility>

namespace sonavault::testing {

/// How often a shown widget draws itself.
class PaintCounter final : public QObject {
  public:
    explicit PaintCounter(QWidget& widget) {
        QCoreApplication::processEvents();
        widget.installEventFilter(this);
    }

    /// Since the last question.
    int take() {
        QCoreApplication::processEvents();
        return std::exchange(count_, 0);
    }

    bool eventFilter(QObject*, QEvent* event) override {
        count_ += event->type() == QEvent::Paint;
        return false;
    }

  private:
    int count_ = 0;
};

}  // namespace sonavault::testing
