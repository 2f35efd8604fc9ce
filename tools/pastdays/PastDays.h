#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "pastdays/DayPlan.h"
#include "platform/Clock.h"
#include "platform/Result.h"

namespace sonavault::pastdays {

/// One of the demonstration's days.
struct PastDay {
    std::string title;  ///< what it is there to show
    DayOutline outline;
    bool legacy = false;  ///< an .m4a without a manifest
};

/// The five days before today, yesterday's first.
std::vector<PastDay> fiveDays(unsigned seed);

/// The first moments of as many local days before that of `now`, yesterday's first.
std::vector<WallTime> daysBefore(WallTime now, int count);

/// What days are made of. The tests use shorter sounds.
struct Material {
    std::vector<Recipe> recipes;
    std::vector<Recipe> legacyRecipes;
};
Material standardMaterial(unsigned seed);

/// Writes the days into that folder, which is made if need be, each on its date before that of
/// `now`. A date that has a recording keeps it. `say`: called with a line for each day.
///
/// Errors: words; the days before the one that failed are there.
Outcome makePastDays(const std::filesystem::path& recordings, const std::vector<PastDay>& days,
                     const Material& material, WallTime now,
                     const std::function<void(const std::string&)>& say);

}  // namespace sonavault::pastdays
