#pragma once

#include <atomic>

#include "platform/Clock.h"

namespace sonavault::testing {

/// A clock that stands still until the test moves it.
class ManualClock final : public Clock {
  public:
    explicit ManualClock(WallTime start) : now_(start.time_since_epoch().count()) {}

    WallTime now() const override { return WallTime(std::chrono::nanoseconds(now_.load())); }
    void set(WallTime moment) { now_ = moment.time_since_epoch().count(); }
    void advance(double seconds) { set(after(now(), seconds)); }

  private:
    std::atomic<std::int64_t> now_;
};

}  // namespace sonavault::testing
