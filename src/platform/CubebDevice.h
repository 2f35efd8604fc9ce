#pragma once

#include <memory>
#include <optional>

#include "platform/CubebCapture.h"
#include "platform/CubebCaptureRun.h"
#include "platform/LeavableThread.h"
#include "platform/Result.h"

namespace sonavault {

/// The one thread that talks to the sound system, as seen from the control thread.
///
/// Any call into the sound system may block for as long as a sound server is frozen, so nobody else
/// makes one, and nobody waits for this thread longer than a bounded time.
///
/// Thread: the control thread.
class CubebDevice {
  public:
    CubebDevice();

    /// A thread that is stuck in a frozen sound server is left behind: it ends by itself when the
    /// server answers or goes away, and touches nothing but what it shares in owning.
    ~CubebDevice();
    CubebDevice(const CubebDevice&) = delete;
    CubebDevice& operator=(const CubebDevice&) = delete;

    /// Nothing when there is no input device, and when no answer comes in time.
    std::optional<CubebDefaultInput> defaultInput();

    /// Whether the last look found an input device; begins another and does not wait for it.
    bool lookForInput();

    /// Captures into `run` until end(), opening the device again whenever it fails.
    ///
    /// Success when the device was opened, and also when no answer comes in time: then capture
    /// begins once the sound server answers, however long that takes. Errors: the reason in words,
    /// when the sound system refused at once. Nothing goes on then.
    Outcome begin(std::shared_ptr<CubebCaptureRun> run);

    /// As begin(), but without a first answer: whatever goes wrong is tried again until end().
    void carryOn(std::shared_ptr<CubebCaptureRun> run);

    /// The run gets no more samples soon after; at once unless the sound server is frozen.
    void end();

  private:
    class Worker;

    const std::shared_ptr<Worker> worker_;
    LeavableThread thread_;
};

}  // namespace sonavault
