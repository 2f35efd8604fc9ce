#pragma once

#include <random>
#include <string>
#include <vector>

namespace sonavault::testing {

/// A moment that a station has to come through.
struct BigMoment {
    enum class Kind { midnight, clockForward, clockBack };
    Kind kind = Kind::midnight;
    std::string name;
    double at = 0;  ///< Units: seconds since 1970
};

/// The moments of one round of a life, in the local time zone: a plain midnight, the change of the
/// clock in spring and in autumn, and the midnights that end days of 23 and of 25 hours. No two of
/// them share a day. `round` counts from 0; each has years of its own.
std::vector<BigMoment> bigMoments(int round, std::mt19937& random);

/// Noon of a quiet day of that round, for a recording from the line input.
double quietNoon(int round);

}  // namespace sonavault::testing
