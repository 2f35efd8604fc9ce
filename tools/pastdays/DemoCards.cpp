#include "pastdays/DemoCards.h"

#include "export/AircheckSchedule.h"

namespace sonavault::pastdays {

std::vector<ScheduledAircheckCard> demoCards(const LocalTime& now) {
    ScheduledAircheckCard thisHour = ScheduledAircheckCard::newDraft();
    thisHour.label = "This hour, live";
    thisHour.daysOfWeek = {1, 2, 3, 4, 5, 6, 7};
    thisHour.startHour = thisHour.endHour = now.hour;
    thisHour.mode = "liveMic";
    thisHour.active = true;

    ScheduledAircheckCard evening = ScheduledAircheckCard::newDraft();
    evening.label = "Evening voicetracks";
    evening.daysOfWeek = {1, 2, 3, 4, 5};
    evening.startHour = 19;
    evening.endHour = 22;
    evening.mode = "voicetracked";
    evening.active = true;
    return {thisHour, evening};
}

void storeDemoCards(Preferences& preferences, const LocalTime& now) {
    preferences.setBytes(kScheduledAirchecksKey, encodeCards(demoCards(now)));
}

}  // namespace sonavault::pastdays
