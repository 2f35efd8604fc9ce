#include "platform/AppendWhole.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "platform/SystemError.h"

namespace sonavault {
namespace {

/// 0, or the number of the error that kept the bytes out of the file.
int writeOrTakeBack(int descriptor, std::string_view bytes) {
    const off_t end = ::lseek(descriptor, 0, SEEK_END);
    if (end < 0) return errno;
    while (!bytes.empty()) {
        const auto taken = ::write(descriptor, bytes.data(), bytes.size());
        if (taken < 0 && errno == EINTR) continue;
        if (taken <= 0) {
            const int error = taken < 0 ? errno : ENOSPC;
            // Half a row would spoil the next one too. Where taking it back fails there is nothing
            // left to try.
            [[maybe_unused]] const int takenBack = ::ftruncate(descriptor, end);
            return error;
        }
        bytes.remove_prefix(static_cast<std::size_t>(taken));
    }
    return 0;
}

}  // namespace

Outcome appendWhole(const std::filesystem::path& file, std::string_view bytes) {
    int descriptor = -1;
    do descriptor = ::open(file.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
    while (descriptor < 0 && errno == EINTR);
    if (descriptor < 0) return Outcome::failure(systemWords(errno));
    const int writing = writeOrTakeBack(descriptor, bytes);
    // Some file systems report a full disk only here.
    const int closing = ::close(descriptor) == 0 ? 0 : errno;
    if (const int error = writing ? writing : closing) return Outcome::failure(systemWords(error));
    return Done{};
}

}  // namespace sonavault
