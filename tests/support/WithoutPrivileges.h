#pragma once

#include <unistd.h>

namespace sonavault::testing {

/// For its length the process may do no more than anybody: who runs the tests as root could else
/// write where no person can.
class WithoutPrivileges {
  public:
    WithoutPrivileges() {
        if (wasRoot_) dropped_ = seteuid(kNobody) == 0;
    }
    ~WithoutPrivileges() {
        if (wasRoot_ && dropped_ && seteuid(0) != 0) _exit(1);
    }
    WithoutPrivileges(const WithoutPrivileges&) = delete;
    WithoutPrivileges& operator=(const WithoutPrivileges&) = delete;

    /// False when the system did not let it.
    bool works() const { return dropped_; }

  private:
    static constexpr uid_t kNobody = 65534;

    const bool wasRoot_ = geteuid() == 0;
    bool dropped_ = !wasRoot_;
};

}  // namespace sonavault::testing
