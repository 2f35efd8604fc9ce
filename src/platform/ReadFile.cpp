#include "platform/ReadFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "platform/SystemError.h"

namespace sonavault {

namespace {

using Read = Result<std::string>;

Read readAll(int descriptor, std::size_t mostBytes) {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) return Read::failure(systemWords(errno));
    if (S_ISDIR(status.st_mode)) return Read::failure(systemWords(EISDIR));
    if (!S_ISREG(status.st_mode)) return Read::failure("Not a plain file");
    if (static_cast<std::size_t>(status.st_size) > mostBytes)
        return Read::failure(systemWords(EFBIG));
    std::string bytes;
    std::array<char, 65536> piece;
    for (;;) {
        const auto count = ::read(descriptor, piece.data(), piece.size());
        if (count == 0) return bytes;
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return Read::failure(systemWords(errno));
        bytes.append(piece.data(), static_cast<std::size_t>(count));
        if (bytes.size() > mostBytes) return Read::failure(systemWords(EFBIG));
    }
}

}  // namespace

Read readWholeFile(const std::filesystem::path& file, std::size_t mostBytes) {
    // Without O_NONBLOCK a pipe under that name would wait for a writer.
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) return Read::failure(systemWords(errno));
    auto bytes = readAll(descriptor, mostBytes);
    ::close(descriptor);
    return bytes;
}

}  // namespace sonavault
