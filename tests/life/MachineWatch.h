#pragma once

#include <atomic>
#include <thread>

namespace sonavault::testing {

/// Notices when this machine gives no time to those who are due: then no recorder can keep to the
/// clock.
class MachineWatch {
  public:
    MachineWatch();
    ~MachineWatch();
    MachineWatch(const MachineWatch&) = delete;
    MachineWatch& operator=(const MachineWatch&) = delete;

    /// The longest that a sleeper was kept waiting since the last call. Units: seconds
    double takeLongest() { return longest_.exchange(0); }

  private:
    void watch();

    std::atomic<bool> stop_ = false;
    std::atomic<double> longest_ = 0;
    std::thread thread_;
};

}  // namespace sonavault::testing
