#pragma once

#include <deque>
#include <mutex>

#include "platform/Executor.h"

namespace sonavault::testing {

/// A main queue that runs what was posted when the test says so.
class ManualQueue final : public Executor {
  public:
    void post(std::function<void()> task) override {
        std::scoped_lock lock(mutex_);
        tasks_.push_back(std::move(task));
    }

    /// Runs everything posted so far and whatever that posts; gives how many pieces ran.
    int runAll() {
        int ran = 0;
        for (;; ++ran) {
            std::function<void()> task;
            {
                std::scoped_lock lock(mutex_);
                if (tasks_.empty()) return ran;
                task = std::move(tasks_.front());
                tasks_.pop_front();
            }
            task();
        }
    }

  private:
    std::mutex mutex_;
    std::deque<std::function<void()>> tasks_;
};

}  // namespace sonavault::testing
