#pragma once

#include <functional>
#include <mutex>
#include <utility>

#include "platform/Executor.h"

namespace sonavault {

/// A way to an Executor that can be closed, after which what is posted goes nowhere: for jobs that
/// may outlive the Executor and share this in owning.
///
/// Thread: any.
class ClosableExecutor final : public Executor {
  public:
    explicit ClosableExecutor(Executor& to) : to_(&to) {}

    void post(std::function<void()> task) override {
        const std::scoped_lock lock(mutex_);
        if (to_) to_->post(std::move(task));
    }

    void close() {
        const std::scoped_lock lock(mutex_);
        to_ = nullptr;
    }

  private:
    std::mutex mutex_;
    Executor* to_;  // guarded by mutex_
};

}  // namespace sonavault
