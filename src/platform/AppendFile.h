#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>

#include "platform/Result.h"

namespace sonavault {

class DiskFlusher;
struct SharedDescriptor;

/// A file that only grows: opened at its end, written through at once with no buffer of our own, so
/// that a crash of the process loses nothing that write() was given.
///
/// Thread: one at a time. Owns: the descriptor. Destruction hands it to the flusher, which flushes
/// and closes it; nothing here ever waits for the disk to be reached.
class AppendFile {
  public:
    /// Makes the file when there is none; never truncates. What is written reaches the disk through
    /// `flusher`, in the background; `flusher` must outlive the file. Errors: the system's words,
    /// also for what is no plain file.
    static Result<std::unique_ptr<AppendFile>> open(const std::filesystem::path& file,
                                                    DiskFlusher& flusher);

    ~AppendFile();
    AppendFile(const AppendFile&) = delete;
    AppendFile& operator=(const AppendFile&) = delete;

    /// True when all bytes were taken. On a full disk none are.
    bool write(std::span<const std::uint8_t> bytes);

  private:
    AppendFile(std::shared_ptr<SharedDescriptor> descriptor, DiskFlusher& flusher);

    std::shared_ptr<SharedDescriptor> descriptor_;
    DiskFlusher& flusher_;
};

}  // namespace sonavault
