#include "platform/AppendFile.h"

#include <fcntl.h>

#include <cerrno>

#include "platform/Descriptors.h"
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
    if (const auto plain = requirePlainFile(descriptor); !plain)
        return Opened::failure(plain.error());
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
    if (bytes.empty()) return true;
    const int error = appendAllOrNothing(
        descriptor_->fd, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    descriptor_->dirty = true;  // behind the write: the flusher may be at work
    return error == 0;
}

}  // namespace sonavault
