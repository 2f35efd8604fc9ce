#pragma once

#include <filesystem>
#include <string_view>

#include "platform/Result.h"

namespace sonavault {

/// Adds `line`, which ends in a line feed, at the end of a file that exists: all of it or, on a
/// full disk, none. Behind half a line, as a killed process leaves it, it begins a line of its own.
/// Nothing stays open, so that any number of calls takes one descriptor.
///
/// The bytes are on their way to the disk, not yet on it: DiskFlusher::flushSoon sees to that.
///
/// Thread: any, but one at a time for one file. Errors: the system's words.
Outcome appendWholeLine(const std::filesystem::path& file, std::string_view line);

}  // namespace sonavault
