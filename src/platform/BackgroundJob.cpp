#include "platform/BackgroundJob.h"

#include <pthread.h>
#include <sys/resource.h>

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace sonavault {
namespace {

constexpr std::size_t kLongestThreadName = 15;
constexpr int kNice = 10;
constexpr std::chrono::seconds kPatience(1);

}  // namespace

void nameThisThread(const std::string& name) {
    pthread_setname_np(pthread_self(), name.substr(0, kLongestThreadName).c_str());
}

void yieldToOthersOnThisThread() {
    // Of 0 it is the calling thread alone. Never refused: it only gives up what one has.
    ::setpriority(PRIO_PROCESS, 0, kNice);
}

struct BackgroundJob::Ending {
    std::mutex mutex;
    std::condition_variable changed;
    bool ended = false;  // guarded by mutex
};

BackgroundJob::BackgroundJob(const std::string& name, Work work)
    : ending_(std::make_shared<Ending>()),
      thread_([name, work = std::move(work), stop = stop_.get_token(), ending = ending_]() mutable {
          nameThisThread(name);
          yieldToOthersOnThisThread();
          work(stop);
          work = nullptr;
          const std::scoped_lock lock(ending->mutex);
          ending->ended = true;
          ending->changed.notify_all();
      }) {}

BackgroundJob::~BackgroundJob() {
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
