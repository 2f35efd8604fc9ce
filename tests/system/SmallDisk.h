#pragma once

#include <filesystem>
#include <string>

namespace sonavault::testing {

/// A disk of the test's own under a folder, gone with the test; needs the right to mount.
class SmallDisk {
  public:
    /// `options` as the system's mount wants them: "size=10m".
    SmallDisk(std::filesystem::path folder, const std::string& options);
    ~SmallDisk();
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    bool isMounted() const { return mounted_; }

    bool changeSize(const std::string& options) const { return change(0, options); }
    bool makeReadOnly(const std::string& options) const;

    /// Takes away what is free, but for the rest of pages that are begun.
    bool fill() const;

  private:
    bool change(unsigned long flags, const std::string& options) const;

    std::filesystem::path folder_;
    bool mounted_ = false;
};

}  // namespace sonavault::testing
