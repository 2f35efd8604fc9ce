#pragma once

#include <pthread.h>

#include <cstddef>

namespace sonavault::testing {

/// For its length no thread can be begun: each would get a stack for which no machine has room.
class NoThreads {
  public:
    NoThreads() {
        pthread_attr_t vast;
        pthread_getattr_default_np(&before_);
        pthread_getattr_default_np(&vast);
        pthread_attr_setstacksize(&vast, std::size_t{1} << 50U);
        pthread_setattr_default_np(&vast);
        pthread_attr_destroy(&vast);
    }
    ~NoThreads() {
        pthread_setattr_default_np(&before_);
        pthread_attr_destroy(&before_);
    }
    NoThreads(const NoThreads&) = delete;
    NoThreads& operator=(const NoThreads&) = delete;

  private:
    pthread_attr_t before_;
};

}  // namespace sonavault::testing
