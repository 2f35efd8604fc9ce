#include "platform/MappedFile.h"

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "platform/Descriptors.h"
#include "platform/SystemError.h"

namespace sonavault {
Result<MappedFile> MappedFile::open(const std::filesystem::path& file, Order order) {
    const auto opened = openForReading(file);
    if (!opened) return Result<MappedFile>::failure(opened.error());
    // The mapping outlives the descriptor.
    return of(opened.value().number(), order);
}

Result<MappedFile> MappedFile::of(int descriptor, Order order) {
    using Opened = Result<MappedFile>;
    if (const auto plain = requirePlainFile(descriptor); !plain)
        return Opened::failure(plain.error());
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) return Opened::failure(systemWords(errno));

    MappedFile mapped;
    if (status.st_size == 0) return mapped;
    const auto size = static_cast<std::size_t>(status.st_size);
    void* const address = ::mmap(nullptr, size, PROT_READ, MAP_SHARED, descriptor, 0);
    if (address == MAP_FAILED) return Opened::failure(systemWords(errno));
    if (order == Order::frontToBack) ::madvise(address, size, MADV_SEQUENTIAL);
    mapped.data_ = static_cast<const std::uint8_t*>(address);
    mapped.size_ = size;
    mapped.guard_ = std::make_unique<MappingGuard>(address, size);
    return mapped;
}

void MappedFile::letGoBefore(std::int64_t offset) const {
    const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    const std::size_t bytes = std::min(static_cast<std::size_t>(offset), size_) / page * page;
    if (bytes > 0) ::madvise(const_cast<std::uint8_t*>(data_), bytes, MADV_DONTNEED);
}

MappedFile::MappedFile(MappedFile&& other) noexcept
    : data_(std::exchange(other.data_, nullptr)),
      size_(std::exchange(other.size_, 0)),
      guard_(std::move(other.guard_)) {}

MappedFile& MappedFile::operator=(MappedFile&& other) noexcept {
    std::swap(data_, other.data_);
    std::swap(size_, other.size_);
    std::swap(guard_, other.guard_);
    return *this;
}

MappedFile::~MappedFile() {
    guard_.reset();
    // munmap wants the address as it was given out, without const.
    if (data_) ::munmap(const_cast<std::uint8_t*>(data_), size_);
}

}  // namespace sonavault
