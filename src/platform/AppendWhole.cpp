#include "platform/AppendWhole.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "platform/Descriptors.h"
#include "platform/SystemError.h"

namespace sonavault {
namespace {

/// 0, or the number of the error that kept the bytes out of the file.
int writeOrTakeBack(int descriptor, std::string_view bytes) {
    const off_t end = ::lseek(descriptor, 0, SEEK_END);
    if (end < 0) return errno;
    const int error = writeAll(descriptor, bytes);
    // Half a row would spoil the next one too. Where taking it back fails there is nothing left to
    // try.
    [[maybe_unused]] const int takenBack = error ? ::ftruncate(descriptor, end) : 0;
    return error;
}

/// As a process leaves a file that is killed while it writes.
bool endsInMidLine(int descriptor) {
    const off_t end = ::lseek(descriptor, 0, SEEK_END);
    char last = '\n';
    return end > 0 && ::pread(descriptor, &last, 1, end - 1) == 1 && last != '\n';
}

}  // namespace

Outcome appendWholeLine(const std::filesystem::path& file, std::string_view line) {
    int descriptor = -1;
    // Without O_NONBLOCK a pipe under that name would wait for a reader.
    do descriptor = ::open(file.c_str(), O_RDWR | O_APPEND | O_CLOEXEC | O_NONBLOCK);
    while (descriptor < 0 && errno == EINTR);
    if (descriptor < 0) return Outcome::failure(systemWords(errno));
    const int writing = endsInMidLine(descriptor)
                            ? writeOrTakeBack(descriptor, '\n' + std::string(line))
                            : writeOrTakeBack(descriptor, line);
    // Some file systems report a full disk only here.
    const int closing = ::close(descriptor) == 0 ? 0 : errno;
    if (const int error = writing ? writing : closing) return Outcome::failure(systemWords(error));
    return Done{};
}

}  // namespace sonavault
