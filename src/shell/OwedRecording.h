#pragma once

#include <optional>

namespace sonavault {

/// Whether a recording that should be running by itself is still owed.
///
/// A computer that comes back after a power cut may start this program before its sound server, and
/// a link that comes back may find the disk full. The recorder then refuses once and is idle;
/// without further tries a station would lose its air until somebody looks.
///
/// Thread: main.
class OwedRecording {
  public:
    /// A try costs the control thread a question to the sound system, and log lines when it fails.
    static constexpr double kTryEverySec = 2.0;

    /// Recording was asked for without a person: it is owed until it runs or a person decides
    /// otherwise. `now`: seconds since 1970
    void askedFor(double now) { lastTry_ = now; }

    /// A person took over: what they decided counts from now on.
    void personDecided() { lastTry_.reset(); }

    /// A recording is owed.
    bool isWaiting() const { return lastTry_.has_value(); }

    /// Takes the try that is due at this moment, if any: true at most once in kTryEverySec.
    /// `recording` ends the waiting for good; `armed`, the recorder's own waiting for its source,
    /// makes the recording owed and leaves the try to the recorder.
    bool takeTry(bool recording, bool armed, double now);

  private:
    std::optional<double> lastTry_;
};

}  // namespace sonavault
