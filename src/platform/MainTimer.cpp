#include "platform/MainTimer.h"

#include <utility>

namespace sonavault {

QtMainTimer::QtMainTimer() {
    timer_.setSingleShot(true);
    // Coarse ones may be off by a twentieth.
    timer_.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] {
        // Out of here first, for the action may put another in its place.
        const auto action = std::exchange(action_, {});
        if (action) action();
    });
}

void QtMainTimer::start(std::chrono::milliseconds delay, std::function<void()> action) {
    action_ = std::move(action);
    timer_.start(delay);
}

void QtMainTimer::stop() {
    timer_.stop();
    action_ = {};
}

}  // namespace sonavault
