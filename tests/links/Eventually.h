#pragma once

#include <chrono>
#include <thread>

namespace sonavault::testing {

/// Waits until `condition` holds, for so long that only a fault takes longer; false when it never
/// did.
template <class Condition>
bool eventually(Condition condition) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

}  // namespace sonavault::testing
