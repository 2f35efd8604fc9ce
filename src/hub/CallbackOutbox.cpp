#include "hub/CallbackOutbox.h"

#include <utility>

namespace sonavault {

void CallbackOutbox::post(Executor& queue, std::function<void()> callback) {
    waiting_.push_back({&queue, std::move(callback), add(kBytesOfACallback)});
    handOver();
}

void CallbackOutbox::handOver() {
    while (!waiting_.empty() && totals_->callbacks < kMostUndeliveredCallbacks) {
        Waiting next = std::move(waiting_.front());
        waiting_.pop_front();
        next.queue->post([callback = std::move(next.callback), load = std::move(next.load),
                          turn = takeTurn()] { callback(); });
    }
}

/// One of the few places in the callers' queues, for as long as it is held.
std::shared_ptr<const void> CallbackOutbox::takeTurn() const {
    ++totals_->callbacks;
    return {totals_.get(), [totals = totals_](const Totals*) { --totals->callbacks; }};
}

}  // namespace sonavault
