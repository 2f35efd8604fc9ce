#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/AudioFileInfo.h"
#include "platform/Clock.h"
#include "platform/Log.h"
#include "review/LoadedDayHost.h"
#include "review/PlaybackFile.h"
#include "store/DayList.h"
#include "store/PeaksCache.h"
#include "store/RecordingManifest.h"
#include "store/RecordingModel.h"

namespace sonavault {

/// What stands in the place of the markers when a day has none but hours; nothing otherwise.
std::optional<std::string> emptyStateText(const std::vector<Marker>& markers);

/// The day under review: its audio file, its place on the clock and its markers. It is always whole
/// or not there at all; a load that fails leaves none.
///
/// Thread: main.
class LoadedDay {
  public:
    /// All outlive this object.
    LoadedDay(LoadedDayHost& host, DayList& days, PeaksCache& peaks, const Clock& clock, Log& log);

    /// Puts a day under review. `silent`: nobody asked for it, so a failure is not worth an alert.
    void loadRecording(const std::filesystem::path& audio, bool silent = false);

    /// The person chose a date: selects its row and loads its file.
    void selectAndLoadRecording(const std::string& date);

    /// The same of a row; one without a file leaves the day under review as it is.
    void selectAndLoad(const DailyRecording& row);

    /// Loads today's recording, or else the newest; nothing when there is none.
    void loadStartupRecording();

    /// Reads the day's log again.
    void loadMarkersForLoadedRecording();

    /// Stops playback; no day is under review from here on.
    void unload();

    const std::optional<std::filesystem::path>& loadedFileURL() const { return loadedFileURL_; }
    const std::optional<RecordingManifest>& loadedManifest() const { return loadedManifest_; }
    const std::vector<Marker>& allMarkers() const { return allMarkers_; }

    /// The file's length as it was when it was last opened; nothing without a day.
    std::optional<AudioFileInfo> loadedFile() const;

    /// What the day is decoded from; null without a day.
    std::shared_ptr<const PlaybackSource> playbackSource() const;

    /// Takes in what the file has gained since it was opened; one that can't be opened any more
    /// stays as it was.
    void openFileAfresh();

    /// How long the timeline is, however much of it holds audio. Units: seconds
    static constexpr double timelineDuration() { return kSecondsInDay; }

    /// Where on the timeline the listener is. A day is opened at its first audio, not at midnight.
    /// Units: seconds
    double playheadSec() const { return playheadSec_; }
    void setPlayheadSec(double position) { playheadSec_ = position; }

    /// The moment of the file's first frame; midnight without a manifest.
    DaySeconds currentRecordingOffset() const;

  private:
    void clear();
    void clearAndShow();
    void refuse(const std::filesystem::path& audio, const std::string& error, bool silent);
    void readManifestOf(const std::filesystem::path& audio);
    void autoLoad(const DailyRecording& row, const std::string& which);
    void refreshMarkerLanes();

    LoadedDayHost& host_;
    DayList& days_;
    PeaksCache& peaks_;
    const Clock& clock_;
    Log& log_;

    std::optional<PlaybackFile> loadedFile_;
    std::optional<std::filesystem::path> loadedFileURL_;
    std::optional<RecordingManifest> loadedManifest_;
    std::vector<Marker> allMarkers_;
    double playheadSec_ = 24133.0;  // a morning's, until a day is loaded
};

}  // namespace sonavault
