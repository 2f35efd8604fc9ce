#pragma once

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QEvent>
#include <QPaintEvent>
#include <QRegion>
#include <QTest>
#include <QWidget>
#include <utility>

namespace sonavault::testing {

/// How often a shown widget draws itself, and what of it.
class PaintCounter final : public QObject {
  public:
    explicit PaintCounter(QWidget& widget) : widget_(widget) {
        QCoreApplication::processEvents();
        widget_.installEventFilter(this);
    }

    /// Since the last question.
    int take() {
        QCoreApplication::processEvents();
        region_ = {};
        return std::exchange(count_, 0);
    }

    /// What was drawn since the last question. Units: points
    QRegion takeRegion() {
        QCoreApplication::processEvents();
        count_ = 0;
        return std::exchange(region_, {});
    }

    /// Waits until nothing more is drawn: a window that has just been opened is drawn when the
    /// system says so, and maybe twice.
    void settle() {
        constexpr int kPatience = 10'000;  // Units: milliseconds
        ASSERT_TRUE(QTest::qWaitForWindowExposed(widget_.window(), kPatience));
        widget_.update();
        ASSERT_TRUE(QTest::qWaitFor([this] { return take() > 0; }, kPatience)) << "never drawn";
        ASSERT_TRUE(QTest::qWaitFor([this] { return take() == 0; }, kPatience)) << "drawn for ever";
    }

    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() != QEvent::Paint) return false;
        ++count_;
        region_ += static_cast<QPaintEvent*>(event)->region();
        return false;
    }

  private:
    QWidget& widget_;
    int count_ = 0;
    QRegion region_;
};

}  // namespace sonavault::testing
