#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace sonavault {

/// By what a file is known to be the same, unchanged, without reading it: whatever writes to it or
/// puts another in its place changes at least one of these.
struct FileStamp {
    std::int64_t size = 0;        ///< Units: bytes
    std::int64_t modifiedNs = 0;  ///< last change of the content. Units: nanoseconds since 1970
    std::uint64_t inode = 0;      ///< the file system's number for the file, whatever its name

    bool operator==(const FileStamp&) const = default;
};

/// The stamp of the file at that path as it is now; nothing when there is none, or something that
/// is no plain file. Thread: any.
std::optional<FileStamp> fileStamp(const std::filesystem::path& file);

/// The same of a file that is open. Thread: any.
std::optional<FileStamp> fileStamp(int descriptor);

}  // namespace sonavault
