#include "hub/DelayedWork.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace sonavault::demohub {

DelayedWork::DelayedWork() {
    running_.start();
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer_, &QTimer::timeout, [this] { doWhatIsDue(); });
}

void DelayedWork::after(qint64 milliseconds, std::function<void()> work) {
    // Qt's timers hold no more than an int, which is 24 days.
    const auto delay = std::clamp<qint64>(milliseconds, 0, std::numeric_limits<int>::max());
    waiting_.emplace(running_.elapsed() + delay, std::move(work));
    waitForTheNext();
}

void DelayedWork::doWhatIsDue() {
    while (!waiting_.empty() && waiting_.begin()->first <= running_.elapsed()) {
        const auto first = waiting_.extract(waiting_.begin());
        first.mapped()();
    }
    waitForTheNext();
}

void DelayedWork::waitForTheNext() {
    if (waiting_.empty()) return;
    const qint64 left = waiting_.begin()->first - running_.elapsed();
    timer_.start(static_cast<int>(std::max<qint64>(0, left)));
}

}  // namespace sonavault::demohub
