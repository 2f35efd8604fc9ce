#include "platform/OpenFile.h"

#include <unistd.h>

#include <cerrno>

#include "platform/Descriptors.h"

namespace sonavault {

Result<OpenFile::Shared> OpenFile::open(const std::filesystem::path& file) {
    auto opened = openForReading(file);
    if (!opened) return Result<Shared>::failure(opened.error());
    return Shared(new OpenFile(file, opened.value().release()));
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
