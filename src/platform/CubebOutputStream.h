#pragma once

#include <memory>
#include <string>

#include "platform/CubebCapture.h"
#include "platform/CubebOutputRun.h"
#include "platform/Result.h"

namespace sonavault {

/// Levels of what goes by, in buffers of 1,024 frames.
///
/// Thread: one.
class OutputMeter {
  public:
    static constexpr FrameCount kBufferFrames = 1024;

    /// Adds frames of two channels, interleaved. True when at least one buffer became full.
    bool add(const float* samples, FrameCount frames);

    /// Of the buffer that became full last.
    const AudioOutputLevels& levels() const { return levels_; }

  private:
    FrameCount filled_ = 0;
    double leftSquares_ = 0;
    double rightSquares_ = 0;
    AudioOutputLevels levels_;
};

/// A running stream to the default output device, whichever that is at each moment.
///
/// It sends out the run's sound, and silence when there is none, when it is late, and while it has
/// another rate than the stream; the sound system converts that rate to the device's.
///
/// Thread: the device thread. Every call, destruction included, may block while a sound server is
/// frozen.
class CubebOutputStream {
  public:
    /// `backend`: the only kind of sound system to accept; empty for any.
    /// Errors: the reason in words.
    static Result<std::unique_ptr<CubebOutputStream>> open(std::shared_ptr<CubebOutputRun> run,
                                                           double sampleRate,
                                                           const std::string& backend);

    double sampleRate() const { return sampleRate_; }
    std::string backend() const { return context_->backend(); }

    /// Fills `out` with what is heard next. Thread: the sound system's.
    void send(float* out, FrameCount frames);

    void fail() { run_->failed = true; }

  private:
    struct StopAndDestroy {
        void operator()(cubeb_stream* stream) const;
    };

    CubebOutputStream(std::shared_ptr<CubebOutputRun> run, double sampleRate,
                      std::unique_ptr<CubebContext> context)
        : run_(std::move(run)), sampleRate_(sampleRate), context_(std::move(context)) {}

    Outcome begin();

    // In the order in which they need each other: the stream goes first, what its callbacks use
    // goes last.
    std::shared_ptr<CubebOutputRun> run_;
    const double sampleRate_;
    OutputMeter meter_;  // the sound system's thread
    std::unique_ptr<CubebContext> context_;
    std::unique_ptr<cubeb_stream, StopAndDestroy> stream_;
};

}  // namespace sonavault
