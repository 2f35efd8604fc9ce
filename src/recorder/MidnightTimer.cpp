#include "recorder/MidnightTimer.h"

#include <algorithm>

#include "platform/LocalTime.h"

namespace sonavault {

namespace {

using std::chrono::milliseconds;

std::string armedLine(double interval) {
    const auto seconds = static_cast<long long>(std::max(interval, 0.0));
    return "Sonavault recorder: midnight rollover armed in " + std::to_string(seconds / 60) + "m " +
           std::to_string(seconds % 60) + "s";
}

}  // namespace

bool isDayOver(const std::string& isoDate, WallTime now) {
    return isoDateString(now) != isoDate &&
           isoDateString(after(now, -kMidnightMarginSec)) != isoDate;
}

MidnightTimer::MidnightTimer(const Clock& clock, Log& log, std::unique_ptr<MainTimer> timer,
                             std::function<void()> dayIsOver)
    : clock_(clock), log_(log), dayIsOver_(std::move(dayIsOver)), timer_(std::move(timer)) {}

void MidnightTimer::arm(WallTime momentOfDay) {
    isoDate_ = isoDateString(momentOfDay);
    due_ = after(startOfNextLocalDay(momentOfDay), kMidnightMarginSec);
    const WallTime now = clock_.now();
    log_.line(armedLine(secondsBetween(now, due_)));
    lookAgainSoon(now);
}

void MidnightTimer::look() {
    const WallTime now = clock_.now();
    if (isDayOver(isoDate_, now))
        dayIsOver_();
    else
        lookAgainSoon(now);
}

void MidnightTimer::lookAgainSoon(WallTime now) {
    auto delay = kMidnightLookInterval;
    // Past the moment that was expected, and yet the same day: the zone was changed.
    if (now < due_) delay = std::min(delay, std::chrono::ceil<milliseconds>(due_ - now));
    timer_->start(delay, [this] { look(); });
}

}  // namespace sonavault
