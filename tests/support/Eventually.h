#pragma once

#include <QCoreApplication>
#include <algorithm>
#include <chrono>
#include <thread>

namespace sonavault::testing {

/// So long that only a fault takes longer, on a busy machine too.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::chrono::seconds kEventually{60};
#else
constexpr std::chrono::seconds kEventually{20};
#endif

/// Waits until `isSo` holds, of which nothing tells; false when it never did.
template <class Condition>
bool eventually(Condition isSo, std::chrono::milliseconds patience = kEventually) {
    constexpr std::chrono::milliseconds kLongestPause{20};
    const auto giveUp = std::chrono::steady_clock::now() + patience;
    for (std::chrono::milliseconds pause{1}; !isSo(); pause = std::min(2 * pause, kLongestPause)) {
        if (std::chrono::steady_clock::now() > giveUp) return false;
        std::this_thread::sleep_for(pause);
    }
    return true;
}

/// The same while the events of this thread are served: for what only they bring about. Those that
/// wait already are served in any case.
template <class Condition>
bool eventuallyServingEvents(Condition isSo, std::chrono::milliseconds patience = kEventually) {
    const auto servedAndSo = [&] {
        QCoreApplication::processEvents();
        return isSo();
    };
    const auto giveUp = std::chrono::steady_clock::now() + patience;
    while (!servedAndSo()) {
        if (std::chrono::steady_clock::now() > giveUp) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

}  // namespace sonavault::testing
