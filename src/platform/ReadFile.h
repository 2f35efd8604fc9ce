#pragma once

#include <filesystem>
#include <string>

#include "platform/Result.h"

namespace sonavault {

/// All bytes of a file that is small enough to hold in memory. Thread: any. Errors: the system's
/// words, also for a folder.
Result<std::string> readWholeFile(const std::filesystem::path& file);

}  // namespace sonavault
