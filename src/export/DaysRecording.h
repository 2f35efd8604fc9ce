#pragma once

#include <filesystem>
#include <span>

namespace sonavault {

/// Whether a file written under that name would take the place of a day's recording, or be taken
/// for one: the name is that of a day's audio in one of `folders`, or leads to such a file by a
/// symbolic or a hard link.
bool isDaysRecording(const std::filesystem::path& output,
                     std::span<const std::filesystem::path> folders);

/// Whether both names are those of one file, by whatever links.
bool isSameFile(const std::filesystem::path& one, const std::filesystem::path& other);

}  // namespace sonavault
