#pragma once

#include <filesystem>
#include <functional>
#include <string_view>

#include "platform/Result.h"

namespace sonavault {

/// Puts `bytes` under the name `file` in one step: a reader sees the old content or the new, never
/// a part. A failure leaves the old content and no temporary behind.
///
/// The bytes are on their way to the disk, not yet on it: DiskFlusher::flushSoon sees to that.
///
/// Thread: any. Errors: words.
Outcome writeFileAtomically(const std::filesystem::path& file, std::string_view bytes);

/// Writes a file's content to an open descriptor, from its beginning. Gives 0, or the system's
/// number of the error that kept it from doing so.
using FillFile = std::function<int(int descriptor)>;

/// The same for content that is not in memory.
Outcome writeFileAtomically(const std::filesystem::path& file, const FillFile& fill);

}  // namespace sonavault
