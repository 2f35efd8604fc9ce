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

/// Carries what was written to a descriptor to the disk. Gives 0, or the system's number of the
/// error; a disk that knows no such request is as good as it gets.
int flushToDisk(int descriptor);

/// writeFileAtomically() of bytes that are on the disk, carried there by `flush`, before the name
/// leads to them: after a power cut too there is the old content or the new, and never an empty
/// file. Waits for the disk.
Outcome writeFileThroughToDisk(const std::filesystem::path& file, std::string_view bytes,
                               const FillFile& flush = flushToDisk);

/// Removes the temporaries that were left in a folder by processes which ended while they wrote.
/// Those of processes that may still be writing stay, this one's too.
///
/// Thread: any; waits for the disk. What can't be looked at or removed is left as it is.
void removeAbandonedTemporaries(const std::filesystem::path& folder);

}  // namespace sonavault
