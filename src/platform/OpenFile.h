#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>

#include "platform/FileStamp.h"
#include "platform/Result.h"

namespace sonavault {

/// A file that was opened for reading. It stays that very file when its name goes to another, or is
/// deleted, as long as anybody holds on to it.
///
/// There is no position in it, so that any number of readers can share one.
///
/// Owns: the descriptor. Thread: any, several at once.
class OpenFile {
  public:
    using Shared = std::shared_ptr<const OpenFile>;

    /// Errors: the system's words, also for what is no plain file.
    static Result<Shared> open(const std::filesystem::path& file);

    ~OpenFile();
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    /// The name under which it was opened.
    const std::filesystem::path& name() const { return name_; }

    int descriptor() const { return descriptor_; }

    /// As it is now; nothing when the system does not tell.
    std::optional<FileStamp> stamp() const { return fileStamp(descriptor_); }

    /// Fills `into` with the bytes at `from`; gives how many there were, fewer only where the file
    /// ends or can't be read.
    std::size_t readAt(std::int64_t from, std::span<std::uint8_t> into) const;

  private:
    OpenFile(std::filesystem::path name, int descriptor)
        : name_(std::move(name)), descriptor_(descriptor) {}

    const std::filesystem::path name_;
    const int descriptor_;
};

}  // namespace sonavault
