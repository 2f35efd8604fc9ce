#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "system/Station.h"

namespace sonavault::testing {

/// A day of twenty minutes that began at 06:50, with half a second of tone every ten seconds, so
/// that any piece of it tells by its bursts where it was cut.
struct ReviewedDay {
    static constexpr double kStartsAt = 6 * 3600 + 50 * 60;
    static constexpr double kLastsFor = 20 * 60;

    /// Makes it today's at that station. `log`: its rows, without the header
    explicit ReviewedDay(const Station& station, const std::string& log = "");

    std::filesystem::path audio;
};

/// When the bursts of an audio file begin, by an independent decoder. Units: seconds of the file
std::vector<double> burstsIn(const std::filesystem::path& file);

/// Whether all bytes of `cut` stand in `day` in a row, as those of a single range must.
bool isPieceOf(const std::filesystem::path& cut, const std::filesystem::path& day);

}  // namespace sonavault::testing
