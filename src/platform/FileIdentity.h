#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace sonavault {

/// Which file is behind a path: the same file keeps it when it grows, and one that takes its name
/// has another.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t number = 0;

    bool operator==(const FileIdentity&) const = default;
};

/// Nothing when the file is not there or can't be looked at. Thread: any.
std::optional<FileIdentity> fileIdentity(const std::filesystem::path& file);

}  // namespace sonavault
