#pragma once

#include <filesystem>
#include <string_view>

#include "platform/Result.h"

namespace sonavault {

/// Adds `bytes` at the end of a file that exists: all of them or, on a full disk, none. Nothing
/// stays open, so that any number of calls takes one descriptor.
///
/// The bytes are on their way to the disk, not yet on it: DiskFlusher::flushSoon sees to that.
///
/// Thread: any, but one at a time for one file. Errors: the system's words.
Outcome appendWhole(const std::filesystem::path& file, std::string_view bytes);

}  // namespace sonavault
