#pragma once

#include <atomic>

namespace sonavault {

/// An open file that its writer and the flusher share. Whoever lets go of it last closes it, and
/// that is the flusher: closing, like flushing, may wait for the disk.
///
/// Owns: the descriptor.
struct SharedDescriptor {
    explicit SharedDescriptor(int number) : fd(number) {}
    ~SharedDescriptor();
    SharedDescriptor(const SharedDescriptor&) = delete;
    SharedDescriptor& operator=(const SharedDescriptor&) = delete;

    const int fd;

    /// Written to since it was last flushed.
    std::atomic<bool> dirty{false};
};

}  // namespace sonavault
