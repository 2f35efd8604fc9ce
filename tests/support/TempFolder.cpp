#include "support/TempFolder.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace sonavault::testing {

TempFolder::TempFolder() {
    // mkdtemp puts a name of its own in the place of the last six.
    std::string pattern =
        (std::filesystem::temp_directory_path() / "sonavault-test-").string() + std::string(6, 'X');
    if (!mkdtemp(pattern.data())) throw std::runtime_error("no temporary folder: " + pattern);
    path_ = pattern;
}

TempFolder::~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string readFile(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

void writeFile(const std::filesystem::path& file, std::string_view bytes) {
    std::filesystem::create_directories(file.parent_path());
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!out.flush()) throw std::runtime_error("can't write " + file.string());
}

}  // namespace sonavault::testing
