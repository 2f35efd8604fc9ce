#include "platform/SingleInstance.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <charconv>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <thread>
#include <vector>

#include "platform/AtomicFile.h"
#include "platform/ProcessTable.h"

namespace sonavault {
namespace {

namespace fs = std::filesystem;

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
    return sonavault::ownProgram();
}

void SingleInstance::takeOver(std::chrono::microseconds patience) {
    if (!prepareRegistry()) return;
    // The copy that has the turn may itself be waiting for a few older ones.
    const Turn turn(registry_, patience * 4);
    endOthers(patience);
    [[maybe_unused]] const auto entered = enter(::getpid());
}

Outcome SingleInstance::enter(int processId) {
    const auto start = startOfProcess(processId);
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
    return startOfProcess(processId) == startedAt && programOfProcess(processId) == program_;
}

}  // namespace sonavault
