#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/Clock.h"
#include "platform/Log.h"
#include "platform/MainTimer.h"

namespace sonavault {

/// How long after midnight the files change, so that the date is surely the new one. Units: seconds
inline constexpr double kMidnightMarginSec = 1.0;

/// How often the wall clock is looked at. A machine that slept over midnight, and a clock that was
/// set, are found out within this time.
inline constexpr std::chrono::milliseconds kMidnightLookInterval{1000};

/// Whether the file of the day `isoDate` is to be left at `now`: the date is another, and that not
/// only since less than the margin. Also true when the clock was set back before the day.
bool isDayOver(const std::string& isoDate, WallTime now);

/// Goes off once when the day of a file is over.
///
/// It looks at the wall clock over and over instead of waiting for a moment worked out in advance:
/// so it is right on days of any length, after a sleep of the machine, and when the clock or the
/// time zone was changed, in either direction.
///
/// Thread: main. `clock` and `log` outlive it.
class MidnightTimer {
  public:
    MidnightTimer(const Clock& clock, Log& log, std::unique_ptr<MainTimer> timer,
                  std::function<void()> dayIsOver);

    /// Waits for the end of the local day in which `momentOfDay` lies, instead of what it was
    /// waiting for. Logs how long that is by the clock as it stands.
    void arm(WallTime momentOfDay);

    void cancel() { timer_->stop(); }

  private:
    void look();
    void lookAgainSoon(WallTime now);

    const Clock& clock_;
    Log& log_;
    const std::function<void()> dayIsOver_;
    std::string isoDate_;
    WallTime due_;
    std::unique_ptr<MainTimer> timer_;
};

}  // namespace sonavault
