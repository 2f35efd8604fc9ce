#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

#include "platform/OpenFile.h"

namespace sonavault {

/// How long the first `size` bytes of a day's MP3 sound, learnt from a few places of it instead of
/// all its frame headers.
///
/// Frames of a constant bitrate lie on a grid. Places are looked at in the beginning, at the end
/// and evenly in between. Where two neighbours lie on one grid, the frames between them are
/// computed; where they don't, the seam between them is closed in on by halves and walked.
///
/// What is taken on trust is that two neighbours on one grid have nothing between them that leaves
/// it and comes back to it. Torn frames between them do so once in a hundred times by chance, and
/// cost a few hundredths of a second then. What else would not be seen are frames of another
/// quality that happen to end on the grid again, which a day with its manifest never has, and bytes
/// that were destroyed in their place, as by a failing disk.
///
/// Thread: any. Units: seconds. Errors: nothing, when the file can't be read or is no such stream:
/// it has to be walked.
std::optional<double> probeMp3Duration(const OpenFile& file, std::int64_t size);

/// The same of the file that has that name now.
std::optional<double> probeMp3Duration(const std::filesystem::path& file, std::int64_t size);

}  // namespace sonavault
