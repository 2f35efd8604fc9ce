#include "platform/FileStamp.h"

#include <sys/stat.h>

namespace sonavault {
namespace {

std::optional<FileStamp> stampOf(const struct stat& status) {
    if (!S_ISREG(status.st_mode)) return std::nullopt;
    constexpr std::int64_t kNanosecondsInSecond = 1'000'000'000;
    return FileStamp{
        .size = status.st_size,
        .modifiedNs = status.st_mtim.tv_sec * kNanosecondsInSecond + status.st_mtim.tv_nsec,
        .inode = status.st_ino};
}

}  // namespace

std::optional<FileStamp> fileStamp(const std::filesystem::path& file) {
    struct stat status {};
    if (::stat(file.c_str(), &status) != 0) return std::nullopt;
    return stampOf(status);
}

std::optional<FileStamp> fileStamp(int descriptor) {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) return std::nullopt;
    return stampOf(status);
}

}  // namespace sonavault
