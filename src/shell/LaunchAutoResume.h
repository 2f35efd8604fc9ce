#pragma once

#include <optional>

#include "recorder/SVRecorderSourceMode.h"

namespace sonavault {

/// Whether a recording that should have begun at launch is still owed.
///
/// A computer that comes back after a power cut may start this program before its sound server. The
/// line input then refuses, and without a further try a station would lose its air until somebody
/// looks. The automation's link needs no such help: the recorder itself waits for it.
///
/// Thread: main.
class LaunchAutoResume {
  public:
    /// A try costs the control thread a question to the sound system, and log lines when it fails.
    static constexpr double kTryEverySec = 3.0;

    /// Recording was asked for at launch, and `recording` tells whether it began. `now`: seconds
    /// since 1970
    void askedAtLaunch(SVRecorderSourceMode source, bool recording, double now);

    /// A person took over: what they decided counts from now on.
    void personDecided() { lastTry_.reset(); }

    /// A recording is owed.
    bool isWaiting() const { return lastTry_.has_value(); }

    /// Whether to try again at this moment; true at most once in kTryEverySec. A recording, however
    /// it began, ends the waiting for good.
    bool isTryDue(bool recording, double now);

  private:
    std::optional<double> lastTry_;
};

}  // namespace sonavault
