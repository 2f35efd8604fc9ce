#include "system/SmallDisk.h"

#include <sys/mount.h>

namespace sonavault::testing {

SmallDisk::SmallDisk(std::filesystem::path folder, const std::string& options)
    : folder_(std::move(folder)) {
    std::filesystem::create_directories(folder_);
    mounted_ = mount("none", folder_.c_str(), "tmpfs", 0, options.c_str()) == 0;
}

SmallDisk::~SmallDisk() {
    if (mounted_) umount2(folder_.c_str(), MNT_DETACH);
}

bool SmallDisk::makeReadOnly(const std::string& options) const {
    return change(MS_RDONLY, options);
}

bool SmallDisk::fill() const {
    const auto space = std::filesystem::space(folder_);
    return changeSize("size=" + std::to_string(space.capacity - space.free));
}

bool SmallDisk::change(unsigned long flags, const std::string& options) const {
    return mount("none", folder_.c_str(), "tmpfs", MS_REMOUNT | flags, options.c_str()) == 0;
}

}  // namespace sonavault::testing
