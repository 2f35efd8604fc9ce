#include "platform/FileIdentity.h"

#include <sys/stat.h>

namespace sonavault {

std::optional<FileIdentity> fileIdentity(const std::filesystem::path& file) {
    struct stat status {};
    if (::stat(file.c_str(), &status) != 0) return std::nullopt;
    return FileIdentity{static_cast<std::uint64_t>(status.st_dev),
                        static_cast<std::uint64_t>(status.st_ino)};
}

}  // namespace sonavault
