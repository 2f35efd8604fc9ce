#pragma once

#include <filesystem>
#include <random>
#include <string>

namespace sonavault {

/// A folder of this run's own among the temporary files, deleted with all in it at the end; so two
/// runs at a time never share a file.
class OwnFolder {
  public:
    OwnFolder() {
        std::random_device random;
        do
            path_ = std::filesystem::temp_directory_path() /
                    ("sonavault-bench-" + std::to_string(random()));
        while (!std::filesystem::create_directory(path_));
    }
    ~OwnFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    OwnFolder(const OwnFolder&) = delete;
    OwnFolder& operator=(const OwnFolder&) = delete;

    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

  private:
    std::filesystem::path path_;
};

}  // namespace sonavault
