#pragma once

#include <random>

namespace sonavault::automation {

/// A number from `low` up to `high`, the same for the same seed on every machine, which the
/// standard distributions do not promise.
inline float between(std::mt19937& random, float low, float high) {
    return low + (high - low) * static_cast<float>(random() >> 8) / static_cast<float>(1 << 24);
}

/// A number from 0 up to `count`, `count` excluded.
inline int oneOf(std::mt19937& random, int count) {
    return static_cast<int>(random() % static_cast<unsigned>(count));
}

}  // namespace sonavault::automation
