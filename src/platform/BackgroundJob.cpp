#include "platform/BackgroundJob.h"

#include <chrono>
#include <condition_variable>
#include <mutex>

#include "platform/ThisThread.h"

namespace sonavault {
namespace {

constexpr std::chrono::seconds kPatience(1);

}  // namespace

struct BackgroundJob::Ending {
    std::mutex mutex;
    std::condition_variable changed;
    bool ended = false;  // guarded by mutex
};

BackgroundJob::BackgroundJob(const std::string& name, Work work, Priority priority)
    : ending_(std::make_shared<Ending>()),
      thread_([name, priority, work = std::move(work), stop = stop_.get_token(),
               ending = ending_]() mutable {
          nameThisThread(name);
          if (priority == Priority::yielding) yieldToOthersOnThisThread();
          work(stop);
          work = nullptr;
          const std::scoped_lock lock(ending->mutex);
          ending->ended = true;
          ending->changed.notify_all();
      }) {}

void BackgroundJob::leave() {
    stop_.request_stop();
    if (thread_.joinable()) thread_.detach();
}

BackgroundJob::~BackgroundJob() {
    if (!thread_.joinable()) return;
    stop_.request_stop();
    std::unique_lock lock(ending_->mutex);
    const bool ended =
        ending_->changed.wait_for(lock, kPatience, [this] { return ending_->ended; });
    lock.unlock();
    if (ended)
        thread_.join();
    else
        thread_.detach();
}

bool BackgroundJob::hasEnded() const {
    const std::scoped_lock lock(ending_->mutex);
    return ending_->ended;
}

}  // namespace sonavault
