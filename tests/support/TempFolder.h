#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace sonavault::testing {

/// A folder of the test's own, gone when the test is.
class TempFolder {
  public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

  private:
    std::filesystem::path path_;
};

/// All bytes of a file; empty when there is none.
std::string readFile(const std::filesystem::path& file);

/// Puts `bytes` into a file, making the folders that lead to it.
void writeFile(const std::filesystem::path& file, std::string_view bytes);

}  // namespace sonavault::testing
