#pragma once

#include <cstdint>
#include <filesystem>

namespace sonavault {

/// Whether anything is at the path, file or folder; what can't be looked at counts as absent.
inline bool pathExists(const std::filesystem::path& path) {
    std::error_code unreadable;
    return std::filesystem::exists(path, unreadable);
}

/// Whether surely nothing is at the path; what can't be looked at may be something. To be asked
/// before a file is put there that must not replace another.
inline bool isAbsent(const std::filesystem::path& path) {
    std::error_code unreadable;
    return std::filesystem::status(path, unreadable).type() ==
           std::filesystem::file_type::not_found;
}

/// Bytes in the file; 0 when there is none or it can't be looked at.
inline std::uintmax_t fileSize(const std::filesystem::path& file) {
    std::error_code unreadable;
    const auto size = std::filesystem::file_size(file, unreadable);
    return unreadable ? 0 : size;
}

/// What a name leads to over any symbolic links at its end, also when nothing is there.
inline std::filesystem::path behindLinks(std::filesystem::path name) {
    constexpr int kMostLinks = 40;  // as many as the system follows
    std::error_code unreadable;
    for (int i = 0; i < kMostLinks && std::filesystem::is_symlink(name, unreadable); ++i)
        name = name.parent_path() / std::filesystem::read_symlink(name, unreadable);
    return name;
}

}  // namespace sonavault
