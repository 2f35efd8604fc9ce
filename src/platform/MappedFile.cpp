#include "platform/MappedFile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "platform/SystemError.h"

namespace sonavault {
namespace {

/// Closes what it holds at the end of the scope: a mapping outlives its descriptor.
struct Descriptor {
    int number;
    explicit Descriptor(int opened) : number(opened) {}
    ~Descriptor() {
        if (number >= 0) ::close(number);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
};

}  // namespace

Result<MappedFile> MappedFile::open(const std::filesystem::path& file, Order order) {
    // Without O_NONBLOCK a pipe under that name would wait for a writer.
    const Descriptor descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (descriptor.number < 0) return Result<MappedFile>::failure(systemWords(errno));
    return of(descriptor.number, order);
}

Result<MappedFile> MappedFile::of(int descriptor, Order order) {
    using Opened = Result<MappedFile>;
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) return Opened::failure(systemWords(errno));
    if (S_ISDIR(status.st_mode)) return Opened::failure(systemWords(EISDIR));
    if (!S_ISREG(status.st_mode)) return Opened::failure("Not a plain file");

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
