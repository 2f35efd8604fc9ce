#include "platform/Log.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <ctime>
#include <string>

namespace sonavault {
namespace {

// A pipe that reports room takes this much without waiting, and in one piece.
constexpr std::size_t kPieceBytes = 4096;
static_assert(kPieceBytes <= PIPE_BUF);

/// Lets a write to a pipe without reader fail instead of ending the process, whatever the process
/// has arranged for SIGPIPE. The signal goes to the thread that wrote, so it can be held back and
/// taken away there.
class PipeSignalHeldBack {
  public:
    PipeSignalHeldBack() {
        sigemptyset(&pipeSignal_);
        sigaddset(&pipeSignal_, SIGPIPE);
        sigset_t pending;
        sigpending(&pending);
        wasPending_ = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &pipeSignal_, &maskBefore_);
    }

    ~PipeSignalHeldBack() {
        const timespec atOnce{};
        if (!wasPending_)
            while (sigtimedwait(&pipeSignal_, nullptr, &atOnce) < 0 && errno == EINTR) continue;
        pthread_sigmask(SIG_SETMASK, &maskBefore_, nullptr);
    }

    PipeSignalHeldBack(const PipeSignalHeldBack&) = delete;
    PipeSignalHeldBack& operator=(const PipeSignalHeldBack&) = delete;

  private:
    sigset_t pipeSignal_;
    sigset_t maskBefore_;
    bool wasPending_ = false;
};

bool hasRoom(int descriptor) {
    pollfd asked{.fd = descriptor, .events = POLLOUT, .revents = 0};
    while (::poll(&asked, 1, 0) < 0)
        if (errno != EINTR) return false;
    return asked.revents == POLLOUT;
}

/// A terminal that reports room may still wait, for it has room for one byte, not for a piece.
/// Opened once more, it can be told never to wait without telling those who share the given
/// descriptor. Negative when it is no terminal.
int openTerminalAgain(int descriptor) {
    if (!::isatty(descriptor)) return -1;
    const std::string name = "/proc/self/fd/" + std::to_string(descriptor);
    return ::open(name.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
}

}  // namespace

StandardOutputLog::StandardOutputLog(int descriptor)
    : descriptor_(descriptor), terminal_(openTerminalAgain(descriptor)) {}

StandardOutputLog::~StandardOutputLog() {
    if (terminal_ >= 0) ::close(terminal_);
}

void StandardOutputLog::line(std::string_view text) {
    std::scoped_lock lock(writing_);
    std::string bytes;
    bytes.reserve(text.size() + 2);
    if (insideLine_) bytes += '\n';
    bytes += text;
    bytes += '\n';
    const PipeSignalHeldBack heldBack;
    writeWhatFits(bytes);
}

void StandardOutputLog::writeWhatFits(std::string_view bytes) {
    const int target = terminal_ >= 0 ? terminal_ : descriptor_;
    while (!bytes.empty() && hasRoom(target)) {
        const auto taken = ::write(target, bytes.data(), std::min(bytes.size(), kPieceBytes));
        if (taken < 0 && errno == EINTR) continue;
        if (taken <= 0) return;
        const auto count = static_cast<std::size_t>(taken);
        insideLine_ = bytes[count - 1] != '\n';
        bytes.remove_prefix(count);
    }
}

}  // namespace sonavault
