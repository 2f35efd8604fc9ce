#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <thread>

namespace sonavault {

/// A thread whose work may hang in the system, in a frozen disk or sound server, for longer than
/// its owner can wait.
///
/// The work may touch only what it shares in owning: one that hangs is left behind, and ends by
/// itself once the system answers. Whoever owns the thread tells the work to end first.
///
/// Thread: one at a time, not the work's own. Owns: the thread, which is left behind at destruction
/// when it still runs.
class LeavableThread {
  public:
    /// Throws std::system_error when no thread can be had; the work is then not done.
    LeavableThread(std::string name, std::function<void()> work);
    ~LeavableThread();
    LeavableThread(const LeavableThread&) = delete;
    LeavableThread& operator=(const LeavableThread&) = delete;

    /// Waits for the end of the work, but no longer than `patience`; then leaves it behind. Does
    /// nothing when that has been done.
    void endWithin(std::chrono::milliseconds patience);

    /// Leaves the work behind without waiting.
    void leave();

    /// The work is done, and what it held is released.
    bool hasEnded() const;

  private:
    struct Ending;

    std::shared_ptr<Ending> ending_;
    std::thread thread_;
};

}  // namespace sonavault
