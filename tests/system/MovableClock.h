#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <string>

#include "support/TempFolder.h"
#include "system/ChildProcess.h"

namespace sonavault::testing {

/// The wall clock of one program, which the test may set while it runs. Time that is only measured,
/// as timers do it, goes on undisturbed.
class MovableClock {
  public:
    MovableClock() { showAhead(0); }

    /// What a program needs in its environment to live by this clock.
    std::map<std::string, std::string> environment() const;

    /// The clock shows `seconds` more than the machine's; behind it when negative.
    void showAhead(long seconds) const;

    /// Removes what a killed program of this clock left on the machine.
    static void cleanUpAfter(const ChildProcess& program);

  private:
    TempFolder folder_;
};

}  // namespace sonavault::testing
