#include "platform/AppendWhole.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "platform/Descriptors.h"
#include "platform/SystemError.h"

namespace sonavault {
namespace {

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
                            ? appendAllOrNothing(descriptor, '\n' + std::string(line))
                            : appendAllOrNothing(descriptor, line);
    // Some file systems report a full disk only here.
    const int closing = ::close(descriptor) == 0 ? 0 : errno;
    if (const int error = writing ? writing : closing) return Outcome::failure(systemWords(error));
    return Done{};
}

}  // namespace sonavault
