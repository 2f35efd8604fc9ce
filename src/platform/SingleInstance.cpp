#include "platform/SingleInstance.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <charconv>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <optional>
#include <sstream>
#include <string_view>
#include <thread>
#include <vector>

#include "platform/AtomicFile.h"

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

/// When a running process started, in the system's own count since its boot; nothing when it has
/// ended, even if its parent has not yet taken note of that.
std::optional<std::string> startOf(int processId) {
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

/// The name of the file that a process runs, also when that file has since been replaced by a newer
/// one.
std::string programOf(const fs::path& process) {
    constexpr std::string_view kReplaced = " (deleted)";
    std::error_code unreadable;
    std::string program = fs::read_symlink(process / "exe", unreadable).filename().string();
    if (program.ends_with(kReplaced)) program.resize(program.size() - kReplaced.size());
    return program;
}

std::optional<int> processIdFrom(const std::string& name) {
    int processId = 0;
    const auto end = name.data() + name.size();
    const auto read = std::from_chars(name.data(), end, processId);
    if (read.ec != std::errc() || read.ptr != end || processId <= 0) return std::nullopt;
    return processId;
}

/// Only one copy at a time may look for others and enter itself. One that hangs in between is
/// waited for a while only.
class Turn {
  public:
    Turn(const fs::path& registry, std::chrono::microseconds longest)
        : lock_(::open((registry / ".turn").c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW,
                       0600)) {
        constexpr int kLooks = 50;
        for (int look = 0; look < kLooks && lock_ >= 0; ++look) {
            if (::flock(lock_, LOCK_EX | LOCK_NB) == 0) return;
            std::this_thread::sleep_for(longest / kLooks);
        }
    }
    ~Turn() {
        if (lock_ >= 0) ::close(lock_);
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

  private:
    const int lock_;
};

}  // namespace

fs::path SingleInstance::defaultRegistry() {
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    if (runtime && runtime[0] == '/') return fs::path(runtime) / "sonavault";
    std::error_code none;
    fs::path temporary = fs::temp_directory_path(none);
    if (none) temporary = "/tmp";
    return temporary / ("sonavault-" + std::to_string(::getuid()));
}

std::string SingleInstance::ownProgram() {
    return programOf("/proc/self");
}

void SingleInstance::takeOver(std::chrono::microseconds patience) {
    if (!prepareRegistry()) return;
    // The copy that has the turn may itself be waiting for a few older ones.
    const Turn turn(registry_, patience * 4);
    endOthers(patience);
    [[maybe_unused]] const auto entered = enter(::getpid());
}

Outcome SingleInstance::enter(int processId) {
    const auto start = startOf(processId);
    if (!start) return Outcome::failure("no such process");
    if (!prepareRegistry()) return Outcome::failure("no registry of running copies");
    return writeFileAtomically(registry_ / std::to_string(processId), *start + "\n");
}

/// False when the registry isn't a folder of this person's own: anyone may make one under the
/// system's temporary folder, and what another wrote there must not end our processes.
bool SingleInstance::prepareRegistry() const {
    std::error_code reported;
    fs::create_directories(registry_.parent_path(), reported);
    ::mkdir(registry_.c_str(), 0700);
    struct stat found {};
    return ::lstat(registry_.c_str(), &found) == 0 && S_ISDIR(found.st_mode) &&
           found.st_uid == ::geteuid();
}

void SingleInstance::endOthers(std::chrono::microseconds patience) const {
    std::error_code failed;
    std::vector<fs::path> entries;
    for (fs::directory_iterator each(registry_, failed), end; !failed && each != end;
         each.increment(failed))
        entries.push_back(each->path());
    for (const auto& entry : entries) {
        const auto processId = processIdFrom(entry.filename().string());
        if (!processId || *processId == ::getpid()) continue;
        std::string startedAt;
        std::ifstream(entry) >> startedAt;
        end(*processId, startedAt, patience);
        fs::remove(entry, failed);
    }
}

void SingleInstance::end(int processId, const std::string& startedAt,
                         std::chrono::microseconds patience) const {
    if (!isCopy(processId, startedAt)) return;
    ::kill(processId, SIGTERM);
    std::this_thread::sleep_for(patience);
    if (isCopy(processId, startedAt)) ::kill(processId, SIGKILL);
}

bool SingleInstance::isCopy(int processId, const std::string& startedAt) const {
    return startOf(processId) == startedAt && programOf(processFolder(processId)) == program_;
}

}  // namespace sonavault
