#pragma once

#include <string>

#include "platform/Clock.h"

namespace sonavault {

/// A moment told in the machine's local time zone, as the zone stands at the call.
struct LocalTime {
    int year = 0;
    int month = 0;  ///< 1 to 12
    int day = 0;    ///< 1 to 31
    int hour = 0;
    int minute = 0;
    int second = 0;
    int nanosecond = 0;
};

/// Thread: any.
LocalTime localTime(WallTime moment);

/// The date of `moment` in local time as "yyyy-MM-dd", in the Gregorian calendar whatever the
/// locale.
std::string isoDateString(WallTime moment);

/// What the wall clock shows at `moment`, as seconds with fraction: hour, minute and second, not
/// time elapsed, so that 03:00 is 10800 on a day of any length.
double clockSecondsSinceMidnight(WallTime moment);

/// The first moment of the local day after that of `moment`. Days of 23 and 25 hours count as they
/// are, and where midnight is skipped, the next day begins after the gap.
WallTime startOfNextLocalDay(WallTime moment);

/// `moment` in UTC in the internet date-time form with milliseconds: "2026-03-01T14:05:09.123Z"
/// (RFC 3339).
std::string iso8601WithMilliseconds(WallTime moment);

/// Reads what iso8601WithMilliseconds writes, with any number of fractional digits and any zone
/// offset. A text without fractional seconds is refused, as is one that is no real date.
bool parseIso8601WithFraction(const std::string& text, WallTime& moment);

}  // namespace sonavault
