#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "store/StationFolder.h"

namespace sonavault {

/// The date in the name of a day's audio file; nothing when the name is none. Capitals count in the
/// name, and not in the suffix.
std::optional<std::string> recordingDate(const std::filesystem::path& file);

/// A folder's direct entries, sorted by name. Errors: nothing, when it can't be listed.
std::optional<std::vector<std::filesystem::path>> entriesOf(const std::filesystem::path& folder);

}  // namespace sonavault
