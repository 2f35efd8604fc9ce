#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "store/StationFolder.h"

namespace sonavault {

/// The names of all files of a day begin with this; then come the date and a suffix. See
/// docs/formats/day-files.md.
inline constexpr auto kRecordingPrefix = "Sonavault_";

/// Where the list of days and the recovery look: {station}/Logs/Audio, whether it exists or not.
/// Nothing without a station folder; what is then recorded to the person's documents is not listed.
std::optional<std::filesystem::path> recordingsFolder(const StationFolder& station);

/// The date in the name of a day's audio file; nothing when the name is none. Capitals count in the
/// name, and not in the suffix.
std::optional<std::string> recordingDate(const std::filesystem::path& file);

/// A folder's direct entries, sorted by name. Errors: nothing, when it can't be listed.
std::optional<std::vector<std::filesystem::path>> entriesOf(const std::filesystem::path& folder);

}  // namespace sonavault
