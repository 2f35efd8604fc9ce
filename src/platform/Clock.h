#pragma once

#include <chrono>

namespace sonavault {

/// A moment on the machine's wall clock.
using WallTime = std::chrono::time_point<std::chrono::system_clock, std::chrono::nanoseconds>;

/// A span of time in seconds with fraction.
using Seconds = std::chrono::duration<double>;

/// Seconds from `from` to `to`, negative when `to` is earlier.
inline double secondsBetween(WallTime from, WallTime to) {
    // A moment before 1970 may lie so far from one after it that the clock's own count of the time
    // between them overflows; nothing that far needs to be exact.
    if ((from < WallTime{}) != (to < WallTime{}))
        return Seconds(to.time_since_epoch()).count() - Seconds(from.time_since_epoch()).count();
    return Seconds(to - from).count();
}

/// The moment `seconds` after `from`, to the nanosecond.
inline WallTime after(WallTime from, double seconds) {
    return from + std::chrono::duration_cast<std::chrono::nanoseconds>(Seconds(seconds));
}

/// `moment` as seconds since 1970, the form in which throttles and the hub keep time.
inline double secondsSince1970(WallTime moment) {
    return Seconds(moment.time_since_epoch()).count();
}

/// Where the program takes the time from: given at construction, so that a test can be any second
/// of any year.
///
/// Thread: any.
class Clock {
  public:
    virtual ~Clock() = default;
    virtual WallTime now() const = 0;
};

/// The machine's own clock, read afresh at each call.
class SystemClock final : public Clock {
  public:
    WallTime now() const override { return std::chrono::system_clock::now(); }
};

}  // namespace sonavault
