#pragma once

#include <string>
#include <vector>

#include "export/ScheduledAircheckCard.h"

namespace sonavault {

// What the controls of a card show of it, and how a card follows them.

/// The days of a card after one was ticked, or its tick taken away: each once, Monday first.
/// `day`: 1 is Monday, 7 is Sunday.
std::vector<int> daysAfterToggle(std::vector<int> days, int day, bool on);

/// Whether the card applies to that day.
bool hasDay(const ScheduledAircheckCard& card, int day);

/// The hour that a control shows for a stored one, which may be any number. Range: 0 to 23
int shownHour(int stored);

/// "09:00"
std::string hourTitle(int hour);

/// "Has not run yet.", or the date of the last run in words.
std::string lastRunText(const ScheduledAircheckCard& card);

}  // namespace sonavault
