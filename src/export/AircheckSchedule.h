#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "export/ExportHost.h"
#include "export/FrameExporter.h"
#include "export/ScheduledAircheckCard.h"
#include "platform/Clock.h"
#include "platform/Preferences.h"
#include "platform/Throttle.h"
#include "store/StationFolder.h"

namespace sonavault {

/// The preference that holds all cards.
inline constexpr auto kScheduledAirchecksKey = "SVScheduledAirchecks";

/// How often the cards are looked at. Units: seconds
inline constexpr double kAirchecksCheckIntervalSec = 30.0;

/// Where scheduled airchecks go, below the station folder.
inline constexpr auto kAirchecksFolderPathSegment = "Logs/Airchecks";

/// What the schedule works with. All outlive it.
struct AircheckScheduleServices {
    ExportHost& host;
    const ExportedDay& day;
    FrameExporter& exporter;
    Preferences& preferences;  ///< the program's own domain
    const StationFolder& station;
    const Clock& clock;
};

/// The airchecks that are made by themselves, from the day that is under review when one comes due.
/// Nobody may be there to answer, so nothing is asked: the status bar tells what was done.
///
/// Thread: main.
class AircheckSchedule {
  public:
    explicit AircheckSchedule(const AircheckScheduleServices& services) : services_(services) {}

    /// All cards, in the order in which they are shown; saveScheduledAirchecks() after a change.
    std::vector<ScheduledAircheckCard>& scheduledAirchecks() { return scheduledAirchecks_; }
    const std::vector<ScheduledAircheckCard>& scheduledAirchecks() const {
        return scheduledAirchecks_;
    }

    /// The cards as they are stored; none when nothing is, or nothing that can be read.
    std::vector<ScheduledAircheckCard> loadScheduledAirchecks() const;

    void saveScheduledAirchecks();

    /// Looks at the cards if the last look was long enough ago. To be called with each tick of the
    /// display. `now`: the tick's moment. Units: seconds since 1970
    void tickDisplay(double now);

    /// Runs the cards that are due.
    void airchecksSchedulerTick();

    /// Runs a card, due or not, as that of `dateString`, and keeps it from running again that day
    /// whatever comes of it.
    void runScheduledAircheck(std::size_t cardIndex, const std::string& dateString);

    /// Nothing without a station folder.
    std::optional<std::filesystem::path> airchecksOutputFolder() const;

  private:
    void exportSegments(const ScheduledAircheckCard& card, const std::string& date,
                        std::vector<Selection> segments);
    void tell(const Result<Done, ExportError>& result, const AircheckSaved& saved);

    const AircheckScheduleServices services_;
    std::vector<ScheduledAircheckCard> scheduledAirchecks_;
    Throttle lastAirchecksSchedulerCheck_{kAirchecksCheckIntervalSec};
    Lifetime lifetime_;
};

}  // namespace sonavault
