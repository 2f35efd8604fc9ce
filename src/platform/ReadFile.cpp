#include "platform/ReadFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "platform/Descriptors.h"
#include "platform/SystemError.h"

namespace sonavault {

namespace {

using Read = Result<std::string>;

Read readAll(int descriptor, std::size_t mostBytes) {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) return Read::failure(systemWords(errno));
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
    const auto opened = openForReading(file);
    return opened ? readAll(opened.value().number(), mostBytes) : Read::failure(opened.error());
}

}  // namespace sonavault
