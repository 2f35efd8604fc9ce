#pragma once

#include <deque>
#include <functional>
#include <mutex>

namespace sonavault {

/// Work on its way to the thread that will do it.
///
/// The work passes through a lock of our own. The event loop is told only that there is some, by a
/// descriptor that can be read exactly as long as work waits: so a loop that is opened inside a
/// piece of work serves what was posted behind it.
///
/// Thread: put() from any, the rest on the thread that does the work.
class TaskInbox {
  public:
    TaskInbox();
    ~TaskInbox();
    TaskInbox(const TaskInbox&) = delete;
    TaskInbox& operator=(const TaskInbox&) = delete;

    void put(std::function<void()> task);

    /// What an event loop watches for reading.
    int descriptor() const { return bell_; }

    /// Waits, with no event loop, until there is work.
    void wait() const;

    /// Runs as many pieces as waited at the call, in order. What they post comes later, so that the
    /// loop's other business has its turn.
    void runWaiting();

    /// Drops what waits.
    void clear();

  private:
    std::function<void()> takeFirst();

    const int bell_;
    std::mutex mutex_;
    std::deque<std::function<void()>>
        tasks_;  // guarded by mutex_; the bell rings as long as it holds something
};

}  // namespace sonavault
