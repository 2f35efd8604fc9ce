#include "platform/AppendFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/DiskFlusher.h"
#include "platform/SharedDescriptor.h"
#include "platform/SystemError.h"

namespace sonavault {

Result<std::unique_ptr<AppendFile>> AppendFile::open(const std::filesystem::path& file,
                                                     DiskFlusher& flusher) {
    using Opened = Result<std::unique_ptr<AppendFile>>;
    int descriptor = -1;
    // Without O_NONBLOCK a pipe under that name would wait for a reader.
    constexpr int kHow = O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK;
    do descriptor = ::open(file.c_str(), kHow, 0644);
    while (descriptor < 0 && errno == EINTR);
    if (descriptor < 0) return Opened::failure(systemWords(errno));

    // From here on it is closed whatever happens.
    auto shared = std::make_shared<SharedDescriptor>(descriptor);
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) return Opened::failure(systemWords(errno));
    if (!S_ISREG(status.st_mode)) return Opened::failure("Not a plain file");
    flusher.watch(shared);
    // The bytes of a new file are lost with its name if the folder that holds the name isn't
    // flushed as well.
    flusher.flushSoon(file);
    return std::unique_ptr<AppendFile>(new AppendFile(std::move(shared), flusher));
}

AppendFile::AppendFile(std::shared_ptr<SharedDescriptor> descriptor, DiskFlusher& flusher)
    : descriptor_(std::move(descriptor)), flusher_(flusher) {}

AppendFile::~AppendFile() {
    flusher_.close(std::move(descriptor_));
}

bool AppendFile::write(std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const auto taken = ::write(descriptor_->fd, bytes.data(), bytes.size());
        if (taken < 0 && errno == EINTR) continue;
        if (taken <= 0) return false;
        descriptor_->dirty = true;
        bytes = bytes.subspan(static_cast<std::size_t>(taken));
    }
    return true;
}

}  // namespace sonavault
