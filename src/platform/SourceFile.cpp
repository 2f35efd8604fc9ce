#include "platform/SourceFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>
#include <vector>

#include "platform/AtomicFile.h"
#include "platform/Descriptors.h"
#include "platform/FileQueries.h"
#include "platform/FileStamp.h"
#include "platform/SystemError.h"

namespace sonavault {
namespace {

constexpr std::int64_t kSystemPiece = std::int64_t{16} << 20;
constexpr std::int64_t kProcessPiece = std::int64_t{1} << 20;

/// Why a range was not copied.
struct CopyError {
    int number = 0;  // 0 when it was
    bool ofSource = false;
};

// Both of these move `rest.begin` over what is copied. The system does not tell the sides apart.

int copyBySystem(int from, int to, ByteRange& rest, const std::stop_token& stop) {
    while (rest.size() > 0) {
        if (stop.stop_requested()) return ECANCELED;
        off_t at = rest.begin;
        const auto wanted = static_cast<std::size_t>(std::min(rest.size(), kSystemPiece));
        const auto copied = ::copy_file_range(from, &at, to, nullptr, wanted, 0);
        if (copied < 0 && errno == EINTR) continue;
        if (copied < 0) return errno;
        if (copied == 0) return ENODATA;
        rest.begin += copied;
    }
    return 0;
}

CopyError copyByProcess(int from, int to, ByteRange& rest, const std::stop_token& stop) {
    std::vector<char> piece(static_cast<std::size_t>(std::min(rest.size(), kProcessPiece)));
    while (rest.size() > 0) {
        if (stop.stop_requested()) return {ECANCELED};
        const auto wanted = std::min(piece.size(), static_cast<std::size_t>(rest.size()));
        const auto read = ::pread(from, piece.data(), wanted, rest.begin);
        if (read < 0 && errno == EINTR) continue;
        if (read < 0) return {errno, true};
        // The file was cut short since it was opened.
        if (read == 0) return {ENODATA, true};
        if (const int error = writeAll(to, {piece.data(), static_cast<std::size_t>(read)}))
            return {error};
        rest.begin += read;
    }
    return {};
}

/// Where the system can't copy, between two disks or on one that it has no such call for, nothing
/// tells this from a true error but the second way, which then meets that error itself.
CopyError copyRange(int from, int to, ByteRange range, const std::stop_token& stop,
                    SourceFile::CopyBy by) {
    if (by == SourceFile::CopyBy::system) {
        const int error = copyBySystem(from, to, range, stop);
        if (error == 0 || error == ECANCELED) return {error};
    }
    return copyByProcess(from, to, range, stop);
}

/// The name of a file that was just put there comes back after a power cut only when its folder has
/// been flushed too; where that fails there is nothing left to try.
void flushFolder(const std::filesystem::path& folder) {
    const int descriptor =
        ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0) return;
    ::fsync(descriptor);
    ::close(descriptor);
}

/// The new file may be read and written by whom the old one could.
void takeOverMode(const std::filesystem::path& old, int descriptor) {
    struct stat status {};
    if (::stat(old.c_str(), &status) == 0 && S_ISREG(status.st_mode))
        ::fchmod(descriptor, status.st_mode & 07777);
}

bool isAllowed(const std::filesystem::path& path, int what) {
    return ::faccessat(AT_FDCWD, path.c_str(), what, AT_EACCESS) == 0;
}

/// Whether the person may write that file, which is another than the one behind `source`, but put
/// no new one into its folder.
bool takesNoNewFile(const std::filesystem::path& file, int source) {
    const auto there = fileStamp(file);
    const auto opened = fileStamp(source);
    if (!there || !opened || there->inode == opened->inode) return false;
    const auto folder = file.has_parent_path() ? file.parent_path() : std::filesystem::path(".");
    return isAllowed(file, W_OK) && !isAllowed(folder, W_OK) && errno != EROFS;
}

/// What was there is lost with the first byte. A failure leaves an empty file rather than a part.
Outcome writeInPlace(const std::filesystem::path& file, const FillFile& fill) {
    int descriptor = -1;
    do descriptor = ::open(file.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW);
    while (descriptor < 0 && errno == EINTR);
    if (descriptor < 0) return Outcome::failure(systemWords(errno));
    int error = fill(descriptor);
    // Where emptying fails too there is nothing left to try.
    [[maybe_unused]] const int emptied = error ? ::ftruncate(descriptor, 0) : 0;
    if (::close(descriptor) != 0 && !error) error = errno;
    if (error) return Outcome::failure(systemWords(error));
    return Done{};
}

}  // namespace

Result<SourceFile> SourceFile::open(const std::filesystem::path& file) {
    using Opened = Result<SourceFile>;
    int descriptor = -1;
    // Without O_NONBLOCK a pipe under that name would wait for a writer.
    do descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    while (descriptor < 0 && errno == EINTR);
    if (descriptor < 0) return Opened::failure(systemWords(errno));
    auto mapped = MappedFile::of(descriptor, MappedFile::Order::frontToBack);
    if (mapped) return SourceFile(descriptor, std::move(mapped.value()));
    ::close(descriptor);
    return Opened::failure(mapped.error());
}

SourceFile::SourceFile(SourceFile&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)), mapped_(std::move(other.mapped_)) {}

SourceFile& SourceFile::operator=(SourceFile&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    std::swap(mapped_, other.mapped_);
    return *this;
}

SourceFile::~SourceFile() {
    if (descriptor_ >= 0) ::close(descriptor_);
}

std::int64_t SourceFile::nextData(std::int64_t from) const {
    const auto size = static_cast<std::int64_t>(bytes().size());
    const off_t found = ::lseek(descriptor_, from, SEEK_DATA);
    if (found < 0) return errno == ENXIO ? size : from;
    return std::min<std::int64_t>(found, size);
}

Result<Done, CopyFailure> SourceFile::writeRanges(std::span<const ByteRange> ranges,
                                                  const std::filesystem::path& file,
                                                  const std::stop_token& stop, CopyBy by) const {
    const auto target = behindLinks(file);
    CopyError error;
    const auto fill = [&](int to) {
        for (const auto& range : ranges) {
            error = copyRange(descriptor_, to, range, stop, by);
            if (error.number != 0) return error.number;
        }
        return flushToDisk(to);
    };
    const auto written = takesNoNewFile(target, descriptor_)
                             ? writeInPlace(target, fill)
                             : writeFileAtomically(target, [&](int to) {
                                   takeOverMode(target, to);
                                   return fill(to);
                               });
    if (!written) return Result<Done, CopyFailure>::failure({error.ofSource, written.error()});
    flushFolder(target.parent_path());
    return Done{};
}

}  // namespace sonavault
