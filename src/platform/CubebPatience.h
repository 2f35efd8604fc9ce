#pragma once

#include <chrono>

namespace sonavault {

// How long the two threads that talk to the sound system wait, and are waited for.

/// The longest that the control thread waits for an answer.
inline constexpr std::chrono::milliseconds kCubebAnswerWithin{900};

/// How soon a failed stream is noticed, and how often a device that failed is tried again.
inline constexpr std::chrono::milliseconds kCubebLookEvery{100};
inline constexpr std::chrono::milliseconds kCubebTryEvery{500};

/// A stream that is quiet for longer is taken for lost. A server whose sinks idle may work in
/// blocks of up to 2 s.
inline constexpr std::chrono::seconds kCubebQuietFor{5};

/// With nothing to tend, a thread sleeps until it is called.
inline constexpr std::chrono::hours kCubebUntilCalled{1};

}  // namespace sonavault
