#pragma once

#include <unistd.h>

namespace sonavault {

/// Whether this process may do anything on this machine, which some programs refuse to run with.
inline bool runsAsRoot() {
    return geteuid() == 0;
}

}  // namespace sonavault
