#include "life/LifeCalendar.h"

#include <ctime>

#include "platform/LocalTime.h"

namespace sonavault::testing {

namespace {

constexpr int kFirstYear = 2026;

std::time_t local(int year, int month, int day, int hour) {
    std::tm parts{};
    parts.tm_year = year - 1900;
    parts.tm_mon = month - 1;
    parts.tm_mday = day;
    parts.tm_hour = hour;
    parts.tm_isdst = -1;
    return std::mktime(&parts);
}

long secondsEast(std::time_t moment) {
    std::tm parts{};
    localtime_r(&moment, &parts);
    return parts.tm_gmtoff;
}

/// The first moment of that year at which the clock is changed in that direction.
std::time_t changeIn(int year, bool forward) {
    const std::time_t end = local(year + 1, 1, 1, 0);
    for (std::time_t hour = local(year, 1, 1, 0); hour < end; hour += 3600) {
        const long before = secondsEast(hour);
        const long after = secondsEast(hour + 3600);
        if (before == after || (after > before) != forward) continue;
        std::time_t change = hour;
        while (secondsEast(change) == before) ++change;
        return change;
    }
    return end;
}

double nextMidnight(std::time_t moment) {
    return secondsSince1970(startOfNextLocalDay(std::chrono::system_clock::from_time_t(moment)));
}

BigMoment moment(BigMoment::Kind kind, const std::string& name, double at) {
    return {kind, name, at};
}

}  // namespace

std::vector<BigMoment> bigMoments(int round, std::mt19937& random) {
    using Kind = BigMoment::Kind;
    const int year = kFirstYear + 2 * round;
    const int day = 1 + static_cast<int>(random() % 28);
    return {
        moment(Kind::midnight, "a midnight", nextMidnight(local(year, 12, day, 12))),
        moment(Kind::clockForward, "the clock put forward",
               static_cast<double>(changeIn(year, true))),
        moment(Kind::clockBack, "the clock put back", static_cast<double>(changeIn(year, false))),
        moment(Kind::midnight, "the midnight of a day of 23 hours",
               nextMidnight(changeIn(year + 1, true) + 3600)),
        moment(Kind::midnight, "the midnight of a day of 25 hours",
               nextMidnight(changeIn(year + 1, false) + 3600)),
    };
}

double quietNoon(int round) {
    return static_cast<double>(local(kFirstYear + 2 * round, 7, 1, 12));
}

}  // namespace sonavault::testing
