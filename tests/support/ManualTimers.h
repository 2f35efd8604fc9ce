#pragma once

#include <algorithm>
#include <optional>
#include <vector>

#include "platform/MainTimer.h"
#include "support/ManualClock.h"

namespace sonavault::testing {

/// Timers that go off as the test lets time pass, and a wall clock that goes on with it. A clock
/// that is moved by itself was set, or its machine slept: no timer notices. Outlives its timers.
class ManualTimers {
  public:
    explicit ManualTimers(ManualClock& clock) : clock_(clock) {}

    std::unique_ptr<MainTimer> make() { return std::make_unique<Timer>(*this); }

    /// Runs what becomes due, the earliest first and each at its own moment.
    void pass(double seconds) {
        const Time end =
            passed_ + std::chrono::duration_cast<Time>(std::chrono::duration<double>(seconds));
        while (Timer* next = earliest(end)) {
            goOnTo(*next->due);
            next->fire();
        }
        goOnTo(end);
    }

    /// How many timers are waiting.
    std::size_t waiting() const {
        return static_cast<std::size_t>(std::count_if(timers_.begin(), timers_.end(),
                                                      [](const Timer* each) { return each->due; }));
    }

  private:
    using Time = std::chrono::nanoseconds;

    struct Timer final : MainTimer {
        explicit Timer(ManualTimers& all) : owner(all) { owner.timers_.push_back(this); }
        ~Timer() override { std::erase(owner.timers_, this); }
        Timer(const Timer&) = delete;
        Timer& operator=(const Timer&) = delete;

        void start(std::chrono::milliseconds delay, std::function<void()> work) override {
            due = owner.passed_ + delay;
            action = std::move(work);
        }
        void stop() override { due.reset(); }
        void fire() {
            due.reset();
            const auto work = std::move(action);
            work();
        }

        ManualTimers& owner;
        std::optional<Time> due;
        std::function<void()> action;
    };

    Timer* earliest(Time end) {
        Timer* found = nullptr;
        for (Timer* each : timers_)
            if (each->due && *each->due <= end && (!found || *each->due < *found->due))
                found = each;
        return found;
    }

    void goOnTo(Time moment) {
        clock_.set(clock_.now() + (moment - passed_));
        passed_ = moment;
    }

    ManualClock& clock_;
    Time passed_{0};
    std::vector<Timer*> timers_;
};

}  // namespace sonavault::testing
