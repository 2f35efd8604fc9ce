#include "platform/Descriptors.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/SystemError.h"

namespace sonavault {

Descriptor::~Descriptor() {
    if (number_ >= 0) ::close(number_);
}

Result<Descriptor> openForReading(const std::filesystem::path& file) {
    using Opened = Result<Descriptor>;
    int number = -1;
    // Without O_NONBLOCK a pipe under that name would wait for a writer.
    do number = ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    while (number < 0 && errno == EINTR);
    if (number < 0) return Opened::failure(systemWords(errno));
    Descriptor opened(number);
    if (const auto plain = requirePlainFile(number); !plain) return Opened::failure(plain.error());
    return opened;
}

Outcome requirePlainFile(int descriptor) {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) return Outcome::failure(systemWords(errno));
    if (S_ISDIR(status.st_mode)) return Outcome::failure(systemWords(EISDIR));
    if (!S_ISREG(status.st_mode)) return Outcome::failure("Not a plain file");
    return Done{};
}

int writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto taken = ::write(descriptor, bytes.data(), bytes.size());
        if (taken < 0 && errno == EINTR) continue;
        if (taken <= 0) return taken < 0 ? errno : ENOSPC;
        bytes.remove_prefix(static_cast<std::size_t>(taken));
    }
    return 0;
}

int appendAllOrNothing(int descriptor, std::string_view bytes) {
    const off_t end = ::lseek(descriptor, 0, SEEK_END);
    if (end < 0) return errno;
    const int error = writeAll(descriptor, bytes);
    // Half a row would spoil the next one too. Where taking it back fails there is nothing
    // left to try.
    [[maybe_unused]] const int takenBack = error ? ::ftruncate(descriptor, end) : 0;
    return error;
}

}  // namespace sonavault
