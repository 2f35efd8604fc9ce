#pragma once

#ifdef __linux__
#include <pthread.h>
#endif

namespace sonavault {

/// What a debugger shows for the calling thread.
///
/// Range: up to 15 characters.
inline void nameThisThread(const char* name) {
#ifdef __linux__
    pthread_setname_np(pthread_self(), name);
#else
    (void)name;
#endif
}

}  // namespace sonavault
