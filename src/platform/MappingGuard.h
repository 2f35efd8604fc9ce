#pragma once

#include <cstddef>

namespace sonavault {

/// While it lives, a mapped page whose bytes can't be had any more, because another program has cut
/// the file short or its disk is gone, reads as zeros instead of ending the process.
///
/// Thread: any. Range: up to 256 at a time; more have no effect.
class MappingGuard {
  public:
    MappingGuard(const void* begin, std::size_t size);
    ~MappingGuard();
    MappingGuard(const MappingGuard&) = delete;
    MappingGuard& operator=(const MappingGuard&) = delete;

  private:
    std::size_t slot_;
};

}  // namespace sonavault
