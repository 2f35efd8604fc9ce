#pragma once

#include <filesystem>
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

}  // namespace sonavault
