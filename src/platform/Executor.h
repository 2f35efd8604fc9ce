#pragma once

#include <functional>
#include <memory>
#include <utility>

namespace sonavault {

/// A place where work runs one piece after the other, in the order in which it was posted.
///
/// Thread: post() from any.
class Executor {
  public:
    virtual ~Executor() = default;
    virtual void post(std::function<void()> task) = 0;
};

/// A sign of life that posted work checks before it touches the object that posted it.
///
/// Owned by that object. Guarded work must run on the thread that also destroys the object.
class Lifetime {
  public:
    /// `work`, but doing nothing once this Lifetime is gone.
    template <class Work>
    auto guard(Work work) const {
        return [alive = std::weak_ptr<int>(alive_),
                work = std::move(work)](auto&&... arguments) mutable {
            if (alive.lock()) work(std::forward<decltype(arguments)>(arguments)...);
        };
    }

  private:
    std::shared_ptr<int> alive_ = std::make_shared<int>(0);
};

}  // namespace sonavault
