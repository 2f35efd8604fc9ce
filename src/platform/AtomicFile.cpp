#include "platform/AtomicFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <string>

#include "platform/SystemError.h"

namespace sonavault {
namespace {

/// A name that no other thread or running process makes here; hidden, so that nobody takes it for a
/// file of a day.
std::filesystem::path temporaryBeside(const std::filesystem::path& file) {
    static std::atomic<unsigned> count{0};
    const std::string name =
        ".sonavault-" + std::to_string(::getpid()) + "-" + std::to_string(count++) + ".tmp";
    return file.parent_path() / name;
}

bool writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto taken = ::write(descriptor, bytes.data(), bytes.size());
        if (taken < 0 && errno == EINTR) continue;
        if (taken < 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(taken));
    }
    return true;
}

/// 0, or the number of the error that kept the new file behind `descriptor` from being filled.
int fillAndClose(int descriptor, const FillFile& fill) {
    const int writing = fill(descriptor);
    // Some file systems report a full disk only here.
    const int closing = ::close(descriptor) == 0 ? 0 : errno;
    return writing ? writing : closing;
}

}  // namespace

Outcome writeFileAtomically(const std::filesystem::path& file, std::string_view bytes) {
    return writeFileAtomically(
        file, [bytes](int descriptor) { return writeAll(descriptor, bytes) ? 0 : errno; });
}

Outcome writeFileAtomically(const std::filesystem::path& file, const FillFile& fill) {
    std::filesystem::path temporary;
    int descriptor = -1;
    do {
        // A name that is taken was left by a process that died and whose id is ours now.
        temporary = temporaryBeside(file);
        descriptor = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    } while (descriptor < 0 && (errno == EEXIST || errno == EINTR));
    if (descriptor < 0) return Outcome::failure(systemWords(errno));

    int error = fillAndClose(descriptor, fill);
    if (!error && std::rename(temporary.c_str(), file.c_str()) != 0) error = errno;
    if (!error) return Done{};
    ::unlink(temporary.c_str());
    return Outcome::failure(systemWords(error));
}

}  // namespace sonavault
