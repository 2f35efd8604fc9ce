#include "life/MachineWatch.h"

#include <chrono>

namespace sonavault::testing {

MachineWatch::MachineWatch() : thread_([this] { watch(); }) {}

MachineWatch::~MachineWatch() {
    stop_ = true;
    thread_.join();
}

void MachineWatch::watch() {
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::milliseconds kNap{5};
    while (!stop_) {
        const auto due = Clock::now() + kNap;
        std::this_thread::sleep_until(due);
        const double late = std::chrono::duration<double>(Clock::now() - due).count();
        for (double known = longest_;
             late > known && !longest_.compare_exchange_weak(known, late);) {
        }
    }
}

}  // namespace sonavault::testing
