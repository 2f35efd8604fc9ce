#include "export/AircheckCardEditing.h"

#include <algorithm>

#include "platform/Format.h"

namespace sonavault {

std::vector<int> daysAfterToggle(std::vector<int> days, int day, bool on) {
    const bool listed = std::find(days.begin(), days.end(), day) != days.end();
    if (on && !listed) days.push_back(day);
    if (!on) std::erase(days, day);
    std::sort(days.begin(), days.end());
    return days;
}

bool hasDay(const ScheduledAircheckCard& card, int day) {
    return std::find(card.daysOfWeek.begin(), card.daysOfWeek.end(), day) != card.daysOfWeek.end();
}

int shownHour(int stored) {
    return std::clamp(stored, 0, 23);
}

std::string hourTitle(int hour) {
    return zeroPadded(hour, 2) + ":00";
}

std::string lastRunText(const ScheduledAircheckCard& card) {
    return card.lastRunDate.empty() ? "Has not run yet." : "Last exported: " + card.lastRunDate;
}

}  // namespace sonavault
