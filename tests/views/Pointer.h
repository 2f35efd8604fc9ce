#pragma once

#include <QCoreApplication>
#include <QMouseEvent>
#include <QWheelEvent>
#include <QWidget>

namespace sonavault::testing {

/// A mouse or touch pad over one widget. Places are in that widget's points.
class Pointer {
  public:
    explicit Pointer(QWidget& over) : over_(over) {}

    void press(QPointF at, Qt::MouseButton button = Qt::LeftButton) {
        held_ = button;
        send(QEvent::MouseButtonPress, at, button);
    }
    /// Moves, with the button held if it is.
    void move(QPointF to) { send(QEvent::MouseMove, to, Qt::NoButton); }
    void release(QPointF at) {
        const Qt::MouseButton button = held_;
        held_ = Qt::NoButton;
        send(QEvent::MouseButtonRelease, at, button);
    }
    /// The release goes to another window, as when a dialog opens.
    void loseRelease() { held_ = Qt::NoButton; }
    void click(QPointF at, Qt::MouseButton button = Qt::LeftButton) {
        press(at, button);
        release(at);
    }

    struct Swipe {
        QPoint pixels;
        QPoint angle;
        Qt::ScrollPhase phase = Qt::NoScrollPhase;
        Qt::KeyboardModifiers modifiers = Qt::NoModifier;
    };
    void swipe(QPointF at, const Swipe& swipe) {
        QWheelEvent event(at, over_.mapToGlobal(at), swipe.pixels, swipe.angle, held_,
                          swipe.modifiers, swipe.phase, false);
        QCoreApplication::sendEvent(&over_, &event);
    }

  private:
    void send(QEvent::Type type, QPointF at, Qt::MouseButton button) {
        QMouseEvent event(type, at, over_.mapToGlobal(at), button, held_, Qt::NoModifier);
        QCoreApplication::sendEvent(&over_, &event);
    }

    QWidget& over_;
    Qt::MouseButton held_ = Qt::NoButton;
};

}  // namespace sonavault::testing
