#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "export/AircheckCompiler.h"
#include "platform/LocalTime.h"

namespace sonavault {

/// A rule by which an aircheck is made each week on some days, without anyone asking. Its stored
/// form is described in docs/formats/aircheck-cards.md.
struct ScheduledAircheckCard {
    std::string id;               ///< a UUID's text, the card's identity
    std::string label;            ///< the reviewer's name for it
    std::vector<int> daysOfWeek;  ///< 1 is Monday, 7 is Sunday
    int startHour = 0;            ///< the first hour of the window. Range: 0 to 23
    int endHour = 23;             ///< the last one, included. Range: 0 to 23
    std::string mode;             ///< "liveMic" or "voicetracked"
    bool active = false;          ///< false pauses the card
    std::string lastRunDate;      ///< "yyyy-MM-dd" of the last run; empty if it never ran

    /// A card for a fresh row, which is not ready until the reviewer fills it in.
    static ScheduledAircheckCard newDraft();

    AircheckMode aircheckMode() const { return aircheckModeNamed(mode); }

    /// Whether the card says all that a run takes, and is not paused.
    bool isReady() const;

    /// Whether the card should run at `now`: its window is over today, and it has not run today. A
    /// card whose window ends with the day never comes due.
    bool isDue(const LocalTime& now) const;

    bool operator==(const ScheduledAircheckCard&) const = default;
};

/// "yyyy-MM-dd".
std::string isoDate(const LocalTime& moment);

/// 1 for Monday to 7 for Sunday.
int dayOfWeek(const LocalTime& moment);

/// The name of the file that the card's run of that date writes.
std::string scheduledAircheckName(const ScheduledAircheckCard& card, const std::string& date);

/// A JSON array of all cards, UTF-8.
std::string encodeCards(const std::vector<ScheduledAircheckCard>& cards);

/// Errors: nothing, when `json` is no array of cards or a card lacks a key or has one of a wrong
/// type. Unknown keys are passed over.
std::optional<std::vector<ScheduledAircheckCard>> decodeCards(std::string_view json);

}  // namespace sonavault
