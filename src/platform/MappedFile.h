#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>

#include "platform/MappingGuard.h"
#include "platform/Result.h"

namespace sonavault {

/// A file's bytes as they were at opening, mapped into memory for reading; unmapped at destruction.
///
/// What the file gains afterwards is not seen, and no byte beyond its size at opening is part of
/// bytes(). Where another program has cut the file short meanwhile, or its disk is gone, the bytes
/// read as zeros.
///
/// Owns: the mapping, not the descriptor. Thread: any, also several at once.
class MappedFile {
  public:
    /// How the bytes will be read, a hint for the system's read-ahead.
    enum class Order { any, frontToBack };

    /// Errors: the system's words, also for what is no plain file. An empty file gives no bytes and
    /// no error.
    static Result<MappedFile> open(const std::filesystem::path& file, Order order = Order::any);

    /// The same of a file that is open for reading; the descriptor stays the caller's.
    static Result<MappedFile> of(int descriptor, Order order = Order::any);

    MappedFile(MappedFile&& other) noexcept;
    MappedFile& operator=(MappedFile&& other) noexcept;
    ~MappedFile();

    /// Stay valid, and at the same address, when the MappedFile is moved.
    std::span<const std::uint8_t> bytes() const { return {data_, size_}; }

    /// Gives back the memory behind the bytes before `offset`, which can still be read: a walk
    /// through a day's file must not count as memory of the whole file.
    void letGoBefore(std::int64_t offset) const;

  private:
    MappedFile() = default;

    const std::uint8_t* data_ = nullptr;
    std::size_t size_ = 0;
    std::unique_ptr<MappingGuard> guard_;
};

}  // namespace sonavault
