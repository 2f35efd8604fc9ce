#pragma once

#include <filesystem>
#include <optional>

#include "platform/Clock.h"
#include "platform/Log.h"
#include "platform/Preferences.h"

namespace sonavault {

/// The names of all files of a day begin with this; then come the date and a suffix. See
/// docs/formats/day-files.md.
inline constexpr auto kRecordingPrefix = "Sonavault_";

/// The three files that a day's recording writes; they share a base name and differ by suffix.
struct OutputURLs {
    std::filesystem::path audio;  ///< .mp3
    std::filesystem::path json;   ///< the manifest
    std::filesystem::path csv;    ///< the marker log
};

/// The sidecar of an audio file: the same name with another suffix ("json", "csv", "peaks").
std::filesystem::path sidecarURL(const std::filesystem::path& audio, const std::string& suffix);

/// The day's marker log beside its audio.
std::filesystem::path markerLogURL(const std::filesystem::path& audio);

/// The folder that the automation and its sibling programs share, and the places in it where a
/// day's files lie.
///
/// Thread: main.
class StationFolder {
  public:
    /// `shared`: the preference domain of the station's programs, which this one only reads.
    StationFolder(std::filesystem::path home, Preferences shared)
        : home_(std::move(home)), shared_(std::move(shared)) {}

    /// The folder named by the shared preference if that exists, else {home}/Calderwave/Station if
    /// that exists, else nothing. Anything at the path counts. Asked afresh each time.
    std::optional<std::filesystem::path> stationPath() const;

    /// Where the list of days and the recovery look: {station}/Logs/Audio, whether it exists or
    /// not. Nothing without a station folder; what is then recorded to the person's documents is
    /// not listed.
    std::optional<std::filesystem::path> recordingsFolder() const;

    /// The files of the day of `moment`, local time; makes the folder that holds them. Without a
    /// station folder they go to the person's documents. Errors: nothing, and a line in `log`, when
    /// the folder can't be made.
    std::optional<OutputURLs> makeOutputURLs(WallTime moment, Log& log) const;

  private:
    std::filesystem::path outputFolder() const;

    std::filesystem::path home_;
    Preferences shared_;
};

}  // namespace sonavault
