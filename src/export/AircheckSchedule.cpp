#include "export/AircheckSchedule.h"

#include "export/ExportWords.h"
#include "platform/LocalTime.h"

namespace sonavault {

std::vector<ScheduledAircheckCard> AircheckSchedule::loadScheduledAirchecks() const {
    const auto stored = services_.preferences.bytes(kScheduledAirchecksKey);
    auto cards = stored ? decodeCards(*stored) : std::nullopt;
    return std::move(cards).value_or(std::vector<ScheduledAircheckCard>{});
}

void AircheckSchedule::saveScheduledAirchecks() {
    services_.preferences.setBytes(kScheduledAirchecksKey, encodeCards(scheduledAirchecks_));
}

void AircheckSchedule::tickDisplay(double now) {
    if (lastAirchecksSchedulerCheck_.takeTurn(now)) airchecksSchedulerTick();
}

void AircheckSchedule::airchecksSchedulerTick() {
    if (scheduledAirchecks_.empty()) return;
    const LocalTime now = localTime(services_.clock.now());
    for (std::size_t i = 0; i < scheduledAirchecks_.size(); ++i)
        if (scheduledAirchecks_[i].isDue(now)) runScheduledAircheck(i, isoDate(now));
}

void AircheckSchedule::runScheduledAircheck(std::size_t cardIndex, const std::string& dateString) {
    if (cardIndex >= scheduledAirchecks_.size()) return;
    // Before anything can fail: it is all that keeps a card from running twice a day.
    scheduledAirchecks_[cardIndex].lastRunDate = dateString;
    saveScheduledAirchecks();

    const ScheduledAircheckCard card = scheduledAirchecks_[cardIndex];
    auto segments =
        beginningIn({card.startHour, card.endHour},
                    computeAircheckSegments(services_.day.loadedFileURL(), card.aircheckMode()));
    if (segments.empty())
        services_.host.setStatusBarText("Scheduled aircheck \"" + card.label +
                                        "\": no segments in window.");
    else
        exportSegments(card, dateString, std::move(segments));
}

void AircheckSchedule::exportSegments(const ScheduledAircheckCard& card, const std::string& date,
                                      std::vector<Selection> segments) {
    const auto folder = airchecksOutputFolder();
    if (!folder) return;
    // Where this fails the export will, and say so.
    std::error_code ignored;
    std::filesystem::create_directories(*folder, ignored);
    const std::string name = scheduledAircheckName(card, date);
    services_.host.setStatusBarText("Scheduled export: \"" + card.label + "\" → " + name);
    const AircheckSaved saved{.label = card.label,
                              .mode = card.mode,
                              .date = date,
                              .startHour = card.startHour,
                              .endHour = card.endHour,
                              .outputURL = *folder / name,
                              .segmentCount = segments.size(),
                              .totalDurationSec = totalDurationSec(segments),
                              .source = "scheduled"};
    services_.exporter.exportSelectionsToMP3(
        std::move(segments), saved.outputURL,
        lifetime_.guard(
            [this, saved](const Result<Done, ExportError>& result) { tell(result, saved); }));
}

void AircheckSchedule::tell(const Result<Done, ExportError>& result, const AircheckSaved& saved) {
    if (!result) {
        services_.host.setStatusBarText("Aircheck failed: " + result.error().errorDescription());
        return;
    }
    services_.host.setStatusBarText("Aircheck saved: " + saved.outputURL.filename().string());
    services_.host.publishAircheckSaved(saved);
}

std::optional<std::filesystem::path> AircheckSchedule::airchecksOutputFolder() const {
    const auto station = services_.station.stationPath();
    if (!station) return std::nullopt;
    return *station / kAirchecksFolderPathSegment;
}

}  // namespace sonavault
