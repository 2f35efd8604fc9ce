#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

#include "platform/Result.h"

namespace sonavault {

/// Reads a file of any size through a small buffer, mostly forwards. Unlike a mapping it survives a
/// file that is cut short, and holds no more of it in memory than the buffer.
///
/// Thread: one at a time. Owns: the descriptor.
class FileWindow {
  public:
    static constexpr std::size_t kBytes = std::size_t{128} << 10;

    /// Errors: the system's words, also for what is no plain file.
    static Result<FileWindow> open(const std::filesystem::path& file);

    FileWindow(FileWindow&& other) noexcept;
    FileWindow& operator=(FileWindow&& other) noexcept;
    ~FileWindow();

    /// The `count` bytes at `from`, as they are in the file when they are first looked at; fewer
    /// where the file ends or can't be read. Valid until the next call. Range: `count` up to
    /// kBytes.
    std::span<const std::uint8_t> at(std::int64_t from, std::size_t count);

  private:
    explicit FileWindow(int descriptor) : descriptor_(descriptor) {}
    void fill(std::int64_t from);

    int descriptor_;
    std::int64_t begin_ = 0;           // where in the file the buffer's first byte is
    std::vector<std::uint8_t> bytes_;  // what was read there
};

}  // namespace sonavault
