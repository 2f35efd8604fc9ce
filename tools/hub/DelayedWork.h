#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <functional>
#include <map>

namespace sonavault::demohub {

/// Work that is done some time later: what falls due at the same moment in the order in which it
/// was given.
///
/// Thread: the one that made it, which runs an event loop.
class DelayedWork {
  public:
    DelayedWork();

    void after(qint64 milliseconds, std::function<void()> work);

  private:
    void doWhatIsDue();
    void waitForTheNext();

    QElapsedTimer running_;
    std::multimap<qint64, std::function<void()>> waiting_;  // by when it is due
    QTimer timer_;
};

}  // namespace sonavault::demohub
