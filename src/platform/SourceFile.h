#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <stop_token>
#include <string>

#include "platform/MappedFile.h"
#include "platform/Result.h"

namespace sonavault {

/// Some bytes of a file. Units: bytes from its beginning, `end` not included
struct ByteRange {
    std::int64_t begin = 0;
    std::int64_t end = 0;

    std::int64_t size() const { return end - begin; }
    bool operator==(const ByteRange&) const = default;
};

/// Why a copy was not made: what came between, and on which side.
struct CopyFailure {
    bool ofSource = false;  ///< the source could not be read; else the copy could not be written
    std::string words;      ///< the system's
};

/// A file as it was at opening, to look at and to copy ranges from, which are the same file's even
/// when another has taken its name meanwhile.
///
/// Owns: the descriptor and the mapping. Thread: any, one at a time.
class SourceFile {
  public:
    /// Who moves the bytes: the system, which on some disks need not move them at all, or this
    /// process, which always can.
    enum class CopyBy { system, process };

    /// Errors: the system's words, also for what is no plain file.
    static Result<SourceFile> open(const std::filesystem::path& file);

    SourceFile(SourceFile&& other) noexcept;
    SourceFile& operator=(SourceFile&& other) noexcept;
    ~SourceFile();

    /// See MappedFile. Stay valid when the SourceFile is moved.
    std::span<const std::uint8_t> bytes() const { return mapped_.bytes(); }
    void letGoBefore(std::int64_t offset) const { mapped_.letGoBefore(offset); }

    /// The first place at or behind `from` that may hold anything but zeros, as far as the system
    /// keeps account of holes; the file's size when there is none. Range: 0 to the size
    std::int64_t nextData(std::int64_t from) const;

    /// Joins `ranges`, in their order, into a file of that name in one step: it is the old one or
    /// has all of them. What the system can't copy the process does. On return the bytes are on the
    /// disk.
    ///
    /// A file that was there is replaced as if it were written anew: it keeps its mode, and a
    /// symbolic link goes on leading to it. In a folder into which the person may put no new file
    /// it is written in place.
    ///
    /// Errors: also when `stop` was asked for; nothing is left behind then, and what was there
    /// stays as it was, but for a file that was to be written in place: that one is left empty.
    Result<Done, CopyFailure> writeRanges(std::span<const ByteRange> ranges,
                                          const std::filesystem::path& file,
                                          const std::stop_token& stop = {},
                                          CopyBy by = CopyBy::system) const;

  private:
    SourceFile(int descriptor, MappedFile mapped)
        : descriptor_(descriptor), mapped_(std::move(mapped)) {}

    int descriptor_;
    MappedFile mapped_;
};

}  // namespace sonavault
