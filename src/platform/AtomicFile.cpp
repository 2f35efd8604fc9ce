#include "platform/AtomicFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <optional>
#include <string>

#include "platform/Descriptors.h"
#include "platform/ProcessTable.h"
#include "platform/SystemError.h"

namespace sonavault {
namespace {

constexpr std::string_view kTemporaryPrefix = ".sonavault-";
constexpr std::string_view kTemporarySuffix = ".tmp";

/// A name that no other thread or running process makes here; hidden, so that nobody takes it for a
/// file of a day.
std::filesystem::path temporaryBeside(const std::filesystem::path& file) {
    static std::atomic<unsigned> count{0};
    std::string name(kTemporaryPrefix);
    name += std::to_string(::getpid()) + "-" + std::to_string(count++);
    name += kTemporarySuffix;
    return file.parent_path() / name;
}

/// 0, or the number of the error that kept the new file behind `descriptor` from being filled.
int fillAndClose(int descriptor, const FillFile& fill) {
    const int writing = fill(descriptor);
    // Some file systems report a full disk only here.
    const int closing = ::close(descriptor) == 0 ? 0 : errno;
    return writing ? writing : closing;
}

/// The id of the process that made a temporary; nothing when the name is none of one.
std::optional<int> makerOf(const std::string& name) {
    if (!name.starts_with(kTemporaryPrefix) || !name.ends_with(kTemporarySuffix))
        return std::nullopt;
    int processId = 0;
    const char* const begin = name.data() + kTemporaryPrefix.size();
    const auto read = std::from_chars(begin, name.data() + name.size(), processId);
    if (read.ec != std::errc() || *read.ptr != '-' || processId <= 0) return std::nullopt;
    return processId;
}

/// An id that the system has since given to another program says nothing against it.
bool hasEnded(int processId) {
    if (processId == ::getpid()) return false;
    if (!startOfProcess(processId)) return true;
    const auto program = programOfProcess(processId);
    return !program.empty() && program != ownProgram();
}

/// Whoever writes a temporary has it locked: on a disk that several machines share, the ids of the
/// others' processes mean nothing here.
bool isBeingWritten(const std::filesystem::path& temporary) {
    const int descriptor =
        ::open(temporary.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    if (descriptor < 0) return true;
    const bool isLocked = ::flock(descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    ::close(descriptor);
    return isLocked;
}

}  // namespace

int flushToDisk(int descriptor) {
    while (::fdatasync(descriptor) != 0) {
        if (errno == EINVAL || errno == ENOTSUP) return 0;
        if (errno != EINTR) return errno;
    }
    return 0;
}

Outcome writeFileThroughToDisk(const std::filesystem::path& file, std::string_view bytes,
                               const FillFile& flush) {
    return writeFileAtomically(file, [&](int descriptor) {
        const int writing = writeAll(descriptor, bytes);
        return writing ? writing : flush(descriptor);
    });
}

void removeAbandonedTemporaries(const std::filesystem::path& folder) {
    std::error_code error;
    std::filesystem::directory_iterator entry(folder, error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const auto maker = makerOf(entry->path().filename().string());
        if (maker && hasEnded(*maker) && !isBeingWritten(entry->path()))
            ::unlink(entry->path().c_str());
    }
}

Outcome writeFileAtomically(const std::filesystem::path& file, std::string_view bytes) {
    return writeFileAtomically(file,
                               [bytes](int descriptor) { return writeAll(descriptor, bytes); });
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
    // Where files can't be locked, the id in the name has to do.
    [[maybe_unused]] const int locked = ::flock(descriptor, LOCK_EX | LOCK_NB);

    int error = fillAndClose(descriptor, fill);
    if (!error && std::rename(temporary.c_str(), file.c_str()) != 0) error = errno;
    if (!error) return Done{};
    ::unlink(temporary.c_str());
    return Outcome::failure(systemWords(error));
}

}  // namespace sonavault
