#include "platform/ProcessTable.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string_view>

namespace sonavault {
namespace {

namespace fs = std::filesystem;

fs::path processFolder(int processId) {
    return "/proc/" + std::to_string(processId);
}

std::string contentOf(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

std::string programOf(const fs::path& process) {
    constexpr std::string_view kReplaced = " (deleted)";
    std::error_code unreadable;
    std::string program = fs::read_symlink(process / "exe", unreadable).filename().string();
    if (program.ends_with(kReplaced)) program.resize(program.size() - kReplaced.size());
    return program;
}

}  // namespace

std::optional<std::string> startOfProcess(int processId) {
    const std::string line = contentOf(processFolder(processId) / "stat");
    // The second field is the program's name in parentheses, which may hold anything; the state is
    // the third.
    const auto nameEnd = line.rfind(')');
    if (nameEnd == std::string::npos) return std::nullopt;
    std::istringstream fields(line.substr(nameEnd + 1));
    std::string state;
    fields >> state;
    if (state == "Z" || state == "X") return std::nullopt;
    std::string start;
    for (int field = 4; field <= 22; ++field) fields >> start;
    if (!fields) return std::nullopt;
    return start;
}

std::string programOfProcess(int processId) {
    return programOf(processFolder(processId));
}

std::string ownProgram() {
    return programOf("/proc/self");
}

}  // namespace sonavault
