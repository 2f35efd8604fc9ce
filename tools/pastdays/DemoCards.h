#pragma once

#include <vector>

#include "export/ScheduledAircheckCard.h"
#include "platform/Preferences.h"

namespace sonavault::pastdays {

/// Two airchecks for a demonstration that begins at `now`: the open microphones of the hour that is
/// running, which are there to be heard as soon as it is over, and the evening's voicetracks.
std::vector<ScheduledAircheckCard> demoCards(const LocalTime& now);

/// Puts them into the program's preferences.
void storeDemoCards(Preferences& preferences, const LocalTime& now);

}  // namespace sonavault::pastdays
