#include "store/DayList.h"

#include <algorithm>
#include <iterator>
#include <map>

#include "platform/FileQueries.h"
#include "platform/FileStamp.h"
#include "store/MarkerLogReader.h"
#include "store/RecordingFiles.h"
#include "store/RecordingLength.h"

namespace sonavault {

namespace {

int markerCountOf(const std::filesystem::path& audio) {
    return countMarkerLines(markerLogURL(audio));
}

DailyRecording rowFor(const std::filesystem::path& audio, const std::string& label,
                      const std::string& today) {
    const auto date = recordingDate(audio).value_or("");
    return {.date = date,
            .dayOfWeek = shortDayOfWeek(date).value_or(""),
            .live = date == today,
            .recorded = label,
            .markerCount = markerCountOf(audio),
            .warning = std::nullopt,
            .expiresInDays = std::nullopt,
            .audioURL = audio};
}

}  // namespace

DayList::DayList(const StationFolder& station, const Clock& clock, Log& log,
                 AudioLengthCache& lengths, DayListHost& host)
    : station_(station), clock_(clock), log_(log), lengths_(lengths), host_(host) {}

std::optional<DailyRecording> DayList::rowOf(const std::string& date) const {
    const auto index = indexOf(date);
    if (!index) return std::nullopt;
    return dailyRecordings_[*index];
}

std::optional<std::size_t> DayList::indexOf(const std::string& date) const {
    for (std::size_t i = 0; i < dailyRecordings_.size(); ++i)
        if (dailyRecordings_[i].date == date) return i;
    return std::nullopt;
}

bool DayList::isLoaded(const std::optional<std::filesystem::path>& audio) const {
    return audio && host_.loadedFileURL() == audio;
}

// The scan

void DayList::reloadDailyRecordings() {
    dailyRecordings_ = scanRecordingsFolder();
    std::sort(dailyRecordings_.begin(), dailyRecordings_.end(),
              [](const auto& one, const auto& other) { return one.date > other.date; });
    const auto today = todayDateString(clock_);
    if (indexOf(today))
        selectedDate_ = today;
    else if (!dailyRecordings_.empty())
        selectedDate_ = dailyRecordings_.front().date;
}

std::vector<DailyRecording> DayList::scanRecordingsFolder() {
    std::map<std::string, DailyRecording> byDate;
    if (const auto folder = station_.recordingsFolder())
        for (auto& row : scanOneRecordingsFolder(*folder)) byDate.emplace(row.date, std::move(row));
    std::vector<DailyRecording> rows;
    rows.reserve(byDate.size());
    for (auto& [date, row] : byDate) rows.push_back(std::move(row));
    return rows;
}

std::vector<DailyRecording> DayList::scanOneRecordingsFolder(const std::filesystem::path& folder) {
    const auto entries = entriesOf(folder);
    if (!entries) return {};
    std::vector<std::filesystem::path> audio;
    // Backwards by name: of a day's two files the .mp3, which goes on growing, before the .m4a.
    std::copy_if(entries->rbegin(), entries->rend(), std::back_inserter(audio),
                 [](const auto& entry) { return recordingDate(entry).has_value(); });
    const auto labels = labelsOf(audio);
    lengths_.forgetUnasked(folder);
    lengths_.save();

    const auto today = todayDateString(clock_);
    std::vector<DailyRecording> rows;
    for (std::size_t i = 0; i < audio.size(); ++i)
        rows.push_back(rowFor(audio[i], labels[i], today));
    return rows;
}

// Labels

std::string DayList::recordingDurationLabel(const std::filesystem::path& audio) {
    return labelsOf(std::span(&audio, 1)).front();
}

std::vector<std::string> DayList::labelsOf(std::span<const std::filesystem::path> audio) {
    std::vector<std::string> labels(audio.size());
    std::vector<StampedFile> unknown;
    std::vector<std::size_t> indexes;  // of the unknown among all
    for (std::size_t i = 0; i < audio.size(); ++i) {
        const auto stamp = fileStamp(audio[i]);
        if (!stamp) continue;
        if (const auto seconds = lengths_.find(audio[i], *stamp)) {
            labels[i] = durationLabel(*seconds);
        } else {
            unknown.push_back({audio[i], *stamp});
            indexes.push_back(i);
        }
    }
    const auto found = recordingLengthsSec(unknown);
    for (std::size_t i = 0; i < found.size(); ++i) {
        if (!found[i]) continue;
        labels[indexes[i]] = durationLabel(*found[i]);
        lengths_.put(unknown[i].file, unknown[i].stamp, *found[i]);
    }
    return labels;
}

std::string DayList::liveDurationLabel(const std::string& date) {
    if (host_.isRecording() && date == todayDateString(clock_))
        return liveLabel(host_.currentRecordingDurationSec());
    const auto row = rowOf(date);
    if (row && row->audioURL) return recordingDurationLabel(*row->audioURL);
    return "00:00";
}

// Today's row

void DayList::liveRefreshTodayRowIfDue(double now) {
    if (lastLiveRowRefresh_.takeTurn(now)) liveRefreshTodayRow();
}

void DayList::liveRefreshTodayRow() {
    const auto today = todayDateString(clock_);
    if (!indexOf(today)) {
        if (host_.isRecording()) meetToday(today);
        return;
    }
    loadTodayIfOwed(today);
    if (const auto index = indexOf(today)) refreshRow(dailyRecordings_[*index]);
}

void DayList::meetToday(const std::string& today) {
    reloadDailyRecordings();
    host_.renderDateList();
    const auto row = rowOf(today);
    if (!row || !row->audioURL || isLoaded(row->audioURL)) return;
    host_.loadRecording(*row->audioURL, true);
    owedLoad_.reset();
    if (!isLoaded(row->audioURL)) owedLoad_ = row->audioURL;
}

/// The file of a recording that has just begun may hold nothing yet; nobody should have to click to
/// see it.
void DayList::loadTodayIfOwed(const std::string& today) {
    if (!owedLoad_) return;
    const auto row = rowOf(today);
    const bool isStillWanted = row && row->audioURL == owedLoad_ && !host_.loadedFileURL();
    if (isStillWanted && fileSize(*owedLoad_) == 0) return;
    if (isStillWanted) host_.loadRecording(*owedLoad_, true);
    // Whatever is under review now is what the person wants to see.
    if (!isStillWanted || host_.loadedFileURL()) owedLoad_.reset();
}

int DayList::liveMarkerCount(const std::filesystem::path& audio) {
    const auto log = markerLogURL(audio);
    // Before the log is read, so that a row that comes meanwhile is not missed the next time.
    const auto stamp = fileStamp(log);
    if (!stamp) return 0;
    if (!counted_ || counted_->log != log || counted_->stamp != *stamp)
        counted_ = CountedLog{log, *stamp, countMarkerLines(log)};
    return counted_->count;
}

void DayList::refreshRow(DailyRecording& row) {
    const auto duration = liveDurationLabel(row.date);
    const int count = row.audioURL ? liveMarkerCount(*row.audioURL) : row.markerCount;
    const bool hasNewMarkers = count != row.markerCount;
    if (duration == row.recorded && !hasNewMarkers) return;
    row.recorded = duration;
    row.markerCount = count;
    const DailyRecording shown = row;
    host_.updateRow(shown);
    if (!isLoaded(shown.audioURL)) return;
    if (hasNewMarkers) host_.loadMarkersForLoadedRecording();
    host_.redrawSummaryBar();
}

// Deletion

bool DayList::isBeingRecorded(const DailyRecording& row) const {
    // After a change of the clock a row may be today's that was not when it was read.
    return host_.isRecording() && (row.live || row.date == todayDateString(clock_));
}

void DayList::deleteRecording(const DailyRecording& row) {
    // Of our own: the one that was handed in may be a row that is replaced while the person thinks.
    const DailyRecording day = row;
    if (!confirmsDeletion(day)) return;
    if (isLoaded(day.audioURL)) host_.unloadRecording();
    if (day.audioURL) deleteFilesOf(day);
    reloadDailyRecordings();
    host_.renderDateList();
    if (!host_.loadedFileURL()) host_.loadStartupRecording();
}

bool DayList::confirmsDeletion(const DailyRecording& row) {
    const DayListWarning refusal{
        "Recording is in progress",
        "Sonavault is currently writing to today's file. Press ⌘R to stop the recording first, "
        "then try Delete again.",
        {"OK"}};
    const DayListWarning question{
        "Delete " + row.date + " (" + row.dayOfWeek + ")?",
        "Permanently removes the audio file, marker CSV, manifest, peaks cache, and any leftover "
        "backup files for this day. This cannot be undone.",
        {"Delete", "Cancel"}};
    if (!isBeingRecorded(row) && host_.ask(question) != 0) return false;
    // A recording may have begun by itself while the question was on the screen.
    if (!isBeingRecorded(row)) return true;
    host_.ask(refusal);
    return false;
}

void DayList::deleteFilesOf(const DailyRecording& row) {
    const auto entries = entriesOf(row.audioURL->parent_path());
    if (!entries) return;
    for (const auto& entry : *entries) {
        const auto name = entry.filename().string();
        // With the dot, so that the match is a whole date.
        if (!name.starts_with(kRecordingPrefix + row.date + ".")) continue;
        std::error_code failed;
        const auto removed = std::filesystem::remove_all(entry, failed);
        // Another may have been quicker.
        if (!failed && removed > 0) log_.line("Sonavault: deleted " + name);
    }
}

}  // namespace sonavault
