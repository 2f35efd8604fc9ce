#pragma once

#include <chrono>
#include <string>

namespace sonavault::testing {

/// A time zone in which midnight is near, so that a program meets it by the machine's own clock.
struct Night {
    enum class Day {
        plain,
        of23Hours,  ///< the clock was put forward on the day that ends
        of25Hours   ///< it was put back
    };

    std::string zone;                                ///< for the variable TZ
    std::string before;                              ///< the date that ends, "yyyy-MM-dd"
    std::string after;                               ///< the date that begins
    std::chrono::system_clock::time_point midnight;  ///< a whole second

    /// Seconds since the midnight that began the day before, by the wall clock: 86400 is midnight.
    double onDayBefore(std::chrono::system_clock::time_point moment) const {
        return 86400 + onDayAfter(moment);
    }
    /// Seconds since midnight.
    double onDayAfter(std::chrono::system_clock::time_point moment) const {
        return std::chrono::duration<double>(moment - midnight).count();
    }
};

/// The night whose midnight comes `seconds` from now.
Night nightIn(int seconds, Night::Day day = Night::Day::plain);

}  // namespace sonavault::testing
