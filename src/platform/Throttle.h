#pragma once

namespace sonavault {

/// Lets something be done no more often than once in an interval of the wall clock.
///
/// Thread: one at a time.
class Throttle {
  public:
    /// Units: seconds
    explicit constexpr Throttle(double interval) : interval_(interval) {}

    /// Whether it is due at `now`, in seconds since 1970: more than the interval has passed since
    /// the last turn. If so, this is the last turn from here on.
    ///
    /// Also due is what has its last turn still before it: a clock that was set back must not keep
    /// anybody waiting until it has caught up.
    constexpr bool takeTurn(double now) {
        if (now >= last_ && now - last_ <= interval_) return false;
        last_ = now;
        return true;
    }

  private:
    double interval_;
    double last_ = 0;
};

}  // namespace sonavault
