#pragma once

#include <cstdlib>

namespace sonavault::testing {

/// Ends the process when it does not hold, which is how a fuzzer learns of a fault.
inline void check(bool condition) {
    if (!condition) std::abort();
}

}  // namespace sonavault::testing
