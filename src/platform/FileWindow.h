#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "platform/OpenFile.h"

namespace sonavault {

/// Reads a file of any size through a small buffer, mostly forwards. Unlike a mapping it survives a
/// file that is cut short, and holds no more of it in memory than the buffer.
///
/// Thread: one at a time.
class FileWindow {
  public:
    static constexpr std::size_t kBytes = std::size_t{128} << 10;

    explicit FileWindow(OpenFile::Shared file) : file_(std::move(file)) {}

    /// The `count` bytes at `from`, as they are in the file when they are first looked at; fewer
    /// where the file ends or can't be read. Valid until the next call. Range: `count` up to
    /// kBytes.
    std::span<const std::uint8_t> at(std::int64_t from, std::size_t count);

  private:
    void fill(std::int64_t from);

    OpenFile::Shared file_;
    std::int64_t begin_ = 0;           // where in the file the buffer's first byte is
    std::vector<std::uint8_t> bytes_;  // what was read there
};

}  // namespace sonavault
