#include "platform/LeavableThread.h"

#include <condition_variable>
#include <mutex>
#include <utility>

#include "platform/ThisThread.h"

namespace sonavault {

struct LeavableThread::Ending {
    std::mutex mutex;
    std::condition_variable changed;
    bool ended = false;  // guarded by mutex
};

LeavableThread::LeavableThread(std::string name, std::function<void()> work)
    : ending_(std::make_shared<Ending>()),
      thread_([name = std::move(name), work = std::move(work), ending = ending_]() mutable {
          nameThisThread(name);
          work();
          work = nullptr;
          const std::scoped_lock lock(ending->mutex);
          ending->ended = true;
          ending->changed.notify_all();
      }) {}

LeavableThread::~LeavableThread() {
    leave();
}

void LeavableThread::endWithin(std::chrono::milliseconds patience) {
    if (!thread_.joinable()) return;
    std::unique_lock lock(ending_->mutex);
    const bool ended = ending_->changed.wait_for(lock, patience, [this] { return ending_->ended; });
    lock.unlock();
    if (ended) thread_.join();
    leave();
}

void LeavableThread::leave() {
    if (thread_.joinable()) thread_.detach();
}

bool LeavableThread::hasEnded() const {
    const std::scoped_lock lock(ending_->mutex);
    return ending_->ended;
}

}  // namespace sonavault
