#pragma once

#include <functional>
#include <stop_token>
#include <string>

#include "platform/LeavableThread.h"

namespace sonavault {

/// A long piece of work on a thread of its own.
///
/// Owns: the thread. Destruction asks the work to stop and waits for its end, but no longer than a
/// second: one that hangs in a frozen disk is left behind. So the work may touch only what it
/// shares in owning.
///
/// Thread: one at a time, not the work's own.
class BackgroundJob {
  public:
    using Work = std::function<void(const std::stop_token&)>;

    /// Whether a person waits for the work, or it yields to all others.
    enum class Priority { asAnyOther, yielding };

    /// Throws std::system_error when no thread can be had; the work is then not done.
    BackgroundJob(const std::string& name, Work work, Priority priority = Priority::yielding);
    ~BackgroundJob();
    BackgroundJob(const BackgroundJob&) = delete;
    BackgroundJob& operator=(const BackgroundJob&) = delete;

    /// Asks the work to stop and lets go of it without waiting. Destruction has nothing left to do.
    void leave();

    /// The work has been done or given up.
    bool hasEnded() const;

  private:
    std::stop_source stop_;
    LeavableThread thread_;
};

}  // namespace sonavault
