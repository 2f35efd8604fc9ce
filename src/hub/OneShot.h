#pragma once

#include <functional>
#include <mutex>
#include <utility>

#include "platform/Executor.h"

namespace sonavault {

/// A callback that runs exactly once, with whichever result comes first: a reply, a time limit or a
/// broken connection.
///
/// Thread: any.
template <class T>
class OneShot {
  public:
    /// `handler` runs on `queue`, which outlives this.
    OneShot(std::function<void(T)> handler, Executor& queue)
        : handler_(std::move(handler)), queue_(queue) {}

    void fire(T value) {
        std::function<void(T)> handler;
        {
            std::scoped_lock lock(mutex_);
            if (fired_) return;
            fired_ = true;
            handler.swap(handler_);
        }
        queue_.post([handler = std::move(handler), value = std::move(value)]() mutable {
            handler(std::move(value));
        });
    }

  private:
    std::mutex mutex_;
    bool fired_ = false;              // guarded by mutex_
    std::function<void(T)> handler_;  // guarded by mutex_; gone once fired
    Executor& queue_;
};

}  // namespace sonavault
