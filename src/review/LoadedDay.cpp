#include "review/LoadedDay.h"

#include <algorithm>

#include "platform/Format.h"
#include "store/MarkerLogReader.h"
#include "store/StationFolder.h"

namespace sonavault {

namespace {

std::string couldNotBeOpened(const std::filesystem::path& audio, const std::string& error) {
    return "The audio file at " + audio.filename().string() +
           " couldn't be opened. It may be empty (0-byte) or corrupted.\n\nDetails: " + error;
}

}  // namespace

std::optional<std::string> emptyStateText(const std::vector<Marker>& markers) {
    const bool hasEvents = std::any_of(markers.begin(), markers.end(),
                                       [](const Marker& marker) { return marker.type != "hour"; });
    if (hasEvents) return std::nullopt;
    return "Audio came from the computer's line input, so no markers are visible for this "
           "recording. All other features are available.";
}

LoadedDay::LoadedDay(LoadedDayHost& host, DayList& days, PeaksCache& peaks, const Clock& clock,
                     Log& log)
    : host_(host), days_(days), peaks_(peaks), clock_(clock), log_(log) {}

void LoadedDay::loadRecording(const std::filesystem::path& audio, bool silent) {
    host_.stopPlayback();
    auto opened = PlaybackFile::open(audio);
    if (!opened) return refuse(audio, opened.error(), silent);
    loadedFile_ = std::move(opened.value());
    loadedFileURL_ = audio;
    readManifestOf(audio);
    log_.line("Sonavault: Loaded recording — " + shortest(loadedFile()->durationSec()) + "s @ " +
              shortest(loadedFile()->sampleRate) + "Hz from " + audio.string());
    peaks_.clear();
    playheadSec_ = currentRecordingOffset().value;
    host_.updatePlayheadVisuals();
    peaks_.loadOrGeneratePeaks(audio);
    loadMarkersForLoadedRecording();
}

void LoadedDay::refuse(const std::filesystem::path& audio, const std::string& error, bool silent) {
    log_.line("Sonavault: Failed to load recording at " + audio.string() + ": " + error);
    // Before `audio`, which may be the member, is cleared.
    const std::string information = couldNotBeOpened(audio, error);
    clearAndShow();
    if (!silent) host_.showWarning("Couldn't load recording", information);
}

void LoadedDay::readManifestOf(const std::filesystem::path& audio) {
    loadedManifest_ = loadManifest(audio, log_);
    if (loadedManifest_)
        log_.line("Sonavault: Loaded manifest — start_offset_sec=" +
                  shortest(loadedManifest_->startOffsetSec) +
                  ", source=" + loadedManifest_->sourceMode.value_or("?"));
    else
        log_.line("Sonavault: No manifest sidecar; using fallback offset " +
                  shortest(kRecordingStartOffsetSec) + "s");
}

void LoadedDay::selectAndLoadRecording(const std::string& date) {
    if (const auto row = days_.rowOf(date)) selectAndLoad(*row);
}

void LoadedDay::selectAndLoad(const DailyRecording& row) {
    days_.setSelectedDate(row.date);
    if (row.audioURL)
        loadRecording(*row.audioURL);
    else
        log_.line("Sonavault: row " + row.date + " has no audio file on disk; selection only");
    host_.renderDateList();
}

void LoadedDay::loadStartupRecording() {
    const auto today = days_.rowOf(todayDateString(clock_));
    if (today && today->audioURL) return autoLoad(*today, "today's");
    const auto& rows = days_.dailyRecordings();
    if (!rows.empty() && rows.front().audioURL) autoLoad(DailyRecording(rows.front()), "newest");
}

void LoadedDay::autoLoad(const DailyRecording& row, const std::string& which) {
    log_.line("Sonavault: Auto-loading " + which + " recording at launch — " +
              row.audioURL->filename().string());
    loadRecording(*row.audioURL, true);
    days_.setSelectedDate(row.date);
}

void LoadedDay::loadMarkersForLoadedRecording() {
    allMarkers_.clear();
    if (loadedFileURL_)
        allMarkers_ = parseMarkerCSV(markerLogURL(*loadedFileURL_)).value_or(std::vector<Marker>{});
    refreshMarkerLanes();
}

void LoadedDay::refreshMarkerLanes() {
    host_.renderTimeline();
    host_.showEmptyState(emptyStateText(allMarkers_).value_or(""));
}

void LoadedDay::unload() {
    host_.stopPlayback();
    clearAndShow();
}

void LoadedDay::clearAndShow() {
    clear();
    host_.renderTimeline();
}

void LoadedDay::clear() {
    loadedFile_.reset();
    loadedFileURL_.reset();
    loadedManifest_.reset();
    peaks_.clear();
    allMarkers_.clear();
}

std::optional<AudioFileInfo> LoadedDay::loadedFile() const {
    if (!loadedFile_) return std::nullopt;
    return loadedFile_->info();
}

std::shared_ptr<const PlaybackSource> LoadedDay::playbackSource() const {
    return loadedFile_ ? loadedFile_->source() : nullptr;
}

void LoadedDay::openFileAfresh() {
    // Whatever goes wrong, what was heard before can be heard again.
    if (loadedFile_) (void)loadedFile_->openAfresh();
}

DaySeconds LoadedDay::currentRecordingOffset() const {
    return {loadedManifest_ ? loadedManifest_->startOffsetSec : kRecordingStartOffsetSec};
}

}  // namespace sonavault
