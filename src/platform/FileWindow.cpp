#include "platform/FileWindow.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "platform/SystemError.h"

namespace sonavault {

Result<FileWindow> FileWindow::open(const std::filesystem::path& file) {
    using Opened = Result<FileWindow>;
    // Without O_NONBLOCK a pipe under that name would wait for a writer.
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) return Opened::failure(systemWords(errno));
    FileWindow window(descriptor);
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) return Opened::failure(systemWords(errno));
    if (S_ISDIR(status.st_mode)) return Opened::failure(systemWords(EISDIR));
    if (!S_ISREG(status.st_mode)) return Opened::failure("Not a plain file");
    return window;
}

FileWindow::FileWindow(FileWindow&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)),
      begin_(other.begin_),
      bytes_(std::move(other.bytes_)) {}

FileWindow& FileWindow::operator=(FileWindow&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    std::swap(begin_, other.begin_);
    std::swap(bytes_, other.bytes_);
    return *this;
}

FileWindow::~FileWindow() {
    if (descriptor_ >= 0) ::close(descriptor_);
}

std::span<const std::uint8_t> FileWindow::at(std::int64_t from, std::size_t count) {
    const auto held = [&] {
        const std::int64_t behind = begin_ + static_cast<std::int64_t>(bytes_.size());
        return from >= begin_ && from + static_cast<std::int64_t>(count) <= behind;
    };
    if (!held()) fill(from);
    const auto offset = static_cast<std::size_t>(from - begin_);
    if (offset >= bytes_.size()) return {};
    return std::span(bytes_).subspan(offset, std::min(count, bytes_.size() - offset));
}

void FileWindow::fill(std::int64_t from) {
    begin_ = from;
    bytes_.resize(kBytes);
    std::size_t read = 0;
    while (read < kBytes) {
        const auto got = ::pread(descriptor_, bytes_.data() + read, kBytes - read,
                                 from + static_cast<std::int64_t>(read));
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) break;
        read += static_cast<std::size_t>(got);
    }
    bytes_.resize(read);
}

}  // namespace sonavault
