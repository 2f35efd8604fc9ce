#pragma once

#include <filesystem>
#include <string>

#include "platform/Result.h"

namespace sonavault {

/// The most that a file may hold that is read whole: many times a day's largest sidecar.
inline constexpr std::size_t kMostWholeFileBytes = std::size_t{256} << 20;

/// All bytes of a plain file, which is small enough to hold in memory. Thread: any. Errors: the
/// system's words, also for a folder, for a pipe and for a file of more than `mostBytes`.
Result<std::string> readWholeFile(const std::filesystem::path& file,
                                  std::size_t mostBytes = kMostWholeFileBytes);

}  // namespace sonavault
