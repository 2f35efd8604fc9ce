#pragma once

#include <cubeb/cubeb.h>

#include <memory>
#include <optional>
#include <string>

#include "platform/AudioFormat.h"
#include "platform/CubebCaptureRun.h"
#include "platform/Result.h"

namespace sonavault {

/// The default input device as the sound system describes it.
struct CubebDefaultInput {
    AudioFormat format;  ///< its own rate and channels, within what a stream may have
    std::string name;    ///< as people know it
};

/// A connection to the sound system.
///
/// Thread: one, the device thread. Every call, destruction included, may block while a sound server
/// is frozen.
class CubebContext {
  public:
    /// Connects to the sound server if there is one, else to the system's own devices.
    /// Errors: the reason in words.
    static Result<std::unique_ptr<CubebContext>> open();

    /// Nothing when there is no input device.
    std::optional<CubebDefaultInput> defaultInput();

    /// Which kind of sound system this is, in the library's own short word.
    std::string backend() const { return cubeb_get_backend_id(context_.get()); }

    cubeb* get() { return context_.get(); }

  private:
    struct Destroy {
        void operator()(cubeb* context) const { cubeb_destroy(context); }
    };

    explicit CubebContext(cubeb* context) : context_(context) {}

    std::unique_ptr<cubeb, Destroy> context_;
};

/// A running stream from the default input device, whichever that is at each moment, into a run's
/// ring.
///
/// Thread: as CubebContext. The run is fed on a thread of the sound system.
class CubebCapture {
  public:
    /// `backend`: the only kind of sound system to accept; empty for any.
    /// Errors: the reason in words.
    static Result<std::unique_ptr<CubebCapture>> open(std::shared_ptr<CubebCaptureRun> run,
                                                      const std::string& backend);

    CubebContext& context() { return *context_; }

  private:
    struct StopAndDestroy {
        void operator()(cubeb_stream* stream) const;
    };

    CubebCapture(std::shared_ptr<CubebCaptureRun> run, std::unique_ptr<CubebContext> context)
        : run_(std::move(run)), context_(std::move(context)) {}

    Outcome begin();

    // In the order in which they need each other: the stream goes first, what its callbacks use
    // goes last.
    std::shared_ptr<CubebCaptureRun> run_;
    std::unique_ptr<CubebContext> context_;
    std::unique_ptr<cubeb_stream, StopAndDestroy> stream_;
};

}  // namespace sonavault
