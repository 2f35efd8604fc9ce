#include "system/Night.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace sonavault::testing {

namespace {

constexpr std::time_t kDay = 86400;
constexpr std::time_t kHour = 3600;

std::tm asUtc(std::time_t moment) {
    std::tm parts{};
    gmtime_r(&moment, &parts);
    return parts;
}

std::string isoDate(std::time_t moment) {
    const std::tm parts = asUtc(moment);
    char text[16];
    std::strftime(text, sizeof text, "%Y-%m-%d", &parts);
    return text;
}

/// An offset as TZ wants it: what is added to local time to get UTC.
std::string asOffset(std::time_t east) {
    const auto size = std::abs(static_cast<long>(east));
    char text[32];
    std::snprintf(text, sizeof text, "%s%ld:%02ld:%02ld", east > 0 ? "-" : "", size / 3600,
                  size / 60 % 60, size % 60);
    return text;
}

/// Two in the morning of a day of the year, as TZ wants it.
std::string atTwo(int dayOfYear) {
    return std::to_string(dayOfYear) + "/2";
}

}  // namespace

Night nightIn(int seconds, Night::Day day) {
    const std::time_t midnight = std::time(nullptr) + seconds;
    // How far local time is ahead of UTC when midnight comes.
    std::time_t east = (kDay - midnight % kDay) % kDay;
    if (east > kDay / 2) east -= kDay;
    const std::time_t localMidnight = midnight + east;
    Night night;
    night.midnight = std::chrono::system_clock::from_time_t(midnight);
    night.before = isoDate(localMidnight - 1);
    night.after = isoDate(localMidnight);
    const int dayOfYear = asUtc(localMidnight - 1).tm_yday;
    const auto today = atTwo(dayOfYear);
    const auto farAway = atTwo((dayOfYear + 180) % 365);
    switch (day) {
        case Night::Day::plain:
            night.zone = "<NIGHT>" + asOffset(east);
            break;
        case Night::Day::of23Hours:
            night.zone = "<STD>" + asOffset(east - kHour) + "<DST>" + asOffset(east) + "," + today +
                         "," + farAway;
            break;
        case Night::Day::of25Hours:
            night.zone = "<STD>" + asOffset(east) + "<DST>" + asOffset(east + kHour) + "," +
                         farAway + "," + today;
            break;
    }
    return night;
}

}  // namespace sonavault::testing
