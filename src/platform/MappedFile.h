#pragma once

#include <cstdint>
#include <filesystem>
#include <span>

#include "platform/Result.h"

namespace sonavault {

/// A file's bytes as they were at opening, mapped into memory for reading; unmapped at destruction.
///
/// Owns: the mapping. Thread: any, also several at once.
class MappedFile {
  public:
    /// Errors: words. An empty file gives no bytes and no error.
    static Result<MappedFile> open(const std::filesystem::path& file);

    MappedFile(MappedFile&& other) noexcept;
    MappedFile& operator=(MappedFile&& other) noexcept;
    ~MappedFile();

    std::span<const std::uint8_t> bytes() const { return {data_, size_}; }

  private:
    MappedFile() = default;

    const std::uint8_t* data_ = nullptr;
    std::size_t size_ = 0;
};

}  // namespace sonavault
