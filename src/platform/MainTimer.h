#pragma once

#include <QTimer>
#include <chrono>
#include <functional>
#include <memory>

namespace sonavault {

/// Calls back once on the main thread after some time, as a precise clock tells time: it knows of
/// neither the wall clock nor of the time for which the machine slept.
///
/// Thread: main.
class MainTimer {
  public:
    virtual ~MainTimer() = default;

    /// Calls `action` once when `delay` has passed, instead of what it was waiting for; the action
    /// may start it again.
    virtual void start(std::chrono::milliseconds delay, std::function<void()> action) = 0;

    /// Whatever it was waiting for is not called any more.
    virtual void stop() = 0;
};

/// Goes off to the millisecond, also while menus and modal dialogs are open.
class QtMainTimer final : public MainTimer {
  public:
    QtMainTimer();

    void start(std::chrono::milliseconds delay, std::function<void()> action) override;
    void stop() override;

  private:
    std::function<void()> action_;
    QTimer timer_;
};

}  // namespace sonavault
