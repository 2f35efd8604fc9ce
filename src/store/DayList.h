#pragma once

#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/Clock.h"
#include "platform/FileStamp.h"
#include "platform/Log.h"
#include "platform/Throttle.h"
#include "store/AudioLengthCache.h"
#include "store/DayListHost.h"
#include "store/RecordingModel.h"
#include "store/StationFolder.h"

namespace sonavault {

/// The spacing of refreshes of today's row. Units: seconds
inline constexpr double kLiveRowRefreshIntervalSec = 2.0;

/// The days that the recordings folder holds, as the rows of the date list: read at start, kept
/// fresh for today, and deleted when the person says so.
///
/// Thread: main.
class DayList {
  public:
    /// `lengths` saves the work of finding out again how long a day is. All outlive the list.
    DayList(const StationFolder& station, const Clock& clock, Log& log, AudioLengthCache& lengths,
            DayListHost& host);

    /// Newest date first. A day without an audio file has no row.
    const std::vector<DailyRecording>& dailyRecordings() const { return dailyRecordings_; }

    /// The date of the row that is selected; a placeholder until there is a first row.
    const std::string& selectedDate() const { return selectedDate_; }
    void setSelectedDate(const std::string& date) { selectedDate_ = date; }

    /// The row of that date; nothing when there is none.
    std::optional<DailyRecording> rowOf(const std::string& date) const;

    /// Reads the folder again, and selects today's row, or else the newest.
    void reloadDailyRecordings();

    /// A row for each date of the station's recordings, in no order; of a date's two files the
    /// first one that its folder gives.
    std::vector<DailyRecording> scanRecordingsFolder();

    /// A row for each audio file of a day in that folder; none when it can't be listed.
    std::vector<DailyRecording> scanOneRecordingsFolder(const std::filesystem::path& folder);

    /// "HH:MM" as found in the file, "24:00" from 23 hours on; empty when it is no audio.
    std::string recordingDurationLabel(const std::filesystem::path& audio);

    /// While today is being recorded, what the recorder says of it; otherwise as found in the file
    /// of that date's row, or "00:00" without one.
    std::string liveDurationLabel(const std::string& date);

    /// Brings today's row up to date: its length and its number of markers. When today's first file
    /// appears while it is recorded, it comes into the list and under review by itself.
    void liveRefreshTodayRow();

    /// liveRefreshTodayRow(), unless it ran within the interval. `now`: seconds since 1970.
    void liveRefreshTodayRowIfDue(double now);

    /// Removes all files of a day from its folder, after the person confirmed it. Refused with a
    /// warning for the day that is being recorded.
    void deleteRecording(const DailyRecording& row);

  private:
    std::vector<std::string> labelsOf(std::span<const std::filesystem::path> audio);
    std::optional<std::size_t> indexOf(const std::string& date) const;
    bool isLoaded(const std::optional<std::filesystem::path>& audio) const;

    void meetToday(const std::string& today);
    void loadTodayIfOwed(const std::string& today);
    void refreshRow(DailyRecording& row);

    bool isBeingRecorded(const DailyRecording& row) const;
    bool confirmsDeletion(const DailyRecording& row);
    void deleteFilesOf(const DailyRecording& row);
    int liveMarkerCount(const std::filesystem::path& audio);

    /// What was last counted for a row that is looked at again and again.
    struct CountedLog {
        std::filesystem::path log;
        FileStamp stamp;
        int count;
    };

    const StationFolder& station_;
    const Clock& clock_;
    Log& log_;
    AudioLengthCache& lengths_;
    DayListHost& host_;

    std::vector<DailyRecording> dailyRecordings_;
    std::string selectedDate_ = "2026-05-08";
    std::optional<CountedLog> counted_;
    Throttle lastLiveRowRefresh_{kLiveRowRefreshIntervalSec};
    /// Today's file, when it could not be put under review yet: still empty when the list met it.
    std::optional<std::filesystem::path> owedLoad_;
};

}  // namespace sonavault
