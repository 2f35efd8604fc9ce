#pragma once

#include <functional>
#include <string>

#include "links/MarkerWire.h"
#include "platform/Clock.h"
#include "platform/DiskFlusher.h"
#include "platform/Log.h"
#include "recorder/NonSilentWatch.h"
#include "recorder/RecentMarkers.h"
#include "store/StationFolder.h"

namespace sonavault {

/// Writes the day's events into its marker log, each once.
///
/// The log is that of the day on which the event arrived, whether or not audio is being recorded.
/// The sender's own times go in as they stand and are compared with nothing.
///
/// Thread: main. All that it is given outlives it.
class MarkerIngestion {
  public:
    /// Called when a live microphone was announced.
    using ArmWatch = std::function<void(NonSilentWatch)>;

    MarkerIngestion(const Clock& clock, Log& log, const StationFolder& stationFolder,
                    DiskFlusher& flusher, ArmWatch armWatch);

    /// Takes what the marker link delivered; an event that came lately leaves no trace. Errors: a
    /// line in the log. The event counts as seen all the same, so that a repeat doesn't repair it.
    void handleIncomingMarker(const MarkerWire& marker);

    /// Takes an event that came by another road; never compared with any other. Errors: a line in
    /// the log, and silence without a folder.
    void appendSyntheticMarker(const std::string& clockTime, const std::string& type,
                               const std::string& label, double durationSec = 0);

    /// From now on every event is new.
    void forgetMarkers() { recentMarkers_.clear(); }

  private:
    void logReceipt(const MarkerWire& marker, const std::filesystem::path& csv);
    void diagnose(const MarkerWire& marker);

    const Clock& clock_;
    Log& log_;
    const StationFolder& stationFolder_;
    DiskFlusher& flusher_;
    const ArmWatch armWatch_;
    RecentMarkers recentMarkers_;
};

/// A row's "HH:MM:SS" with milliseconds, local time as it stands: "23:59:59.999".
std::string clockTextWithMilliseconds(WallTime moment);

}  // namespace sonavault
