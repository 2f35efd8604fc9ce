#include "platform/OpenFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/SystemError.h"

namespace sonavault {

Result<OpenFile::Shared> OpenFile::open(const std::filesystem::path& file) {
    using Opened = Result<Shared>;
    int descriptor = -1;
    // Without O_NONBLOCK a pipe under that name would wait for a writer.
    do descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    while (descriptor < 0 && errno == EINTR);
    if (descriptor < 0) return Opened::failure(systemWords(errno));
    // From here on it is closed whatever happens.
    Shared opened(new OpenFile(file, descriptor));
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) return Opened::failure(systemWords(errno));
    if (S_ISDIR(status.st_mode)) return Opened::failure(systemWords(EISDIR));
    if (!S_ISREG(status.st_mode)) return Opened::failure("Not a plain file");
    return opened;
}

OpenFile::~OpenFile() {
    ::close(descriptor_);
}

std::size_t OpenFile::readAt(std::int64_t from, std::span<std::uint8_t> into) const {
    std::size_t read = 0;
    while (read < into.size()) {
        const auto got = ::pread(descriptor_, into.data() + read, into.size() - read,
                                 from + static_cast<std::int64_t>(read));
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) break;
        read += static_cast<std::size_t>(got);
    }
    return read;
}

}  // namespace sonavault
