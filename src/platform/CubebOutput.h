#pragma once

#include <memory>

#include "platform/AudioOutput.h"
#include "platform/CubebOutputRun.h"
#include "platform/LeavableThread.h"

namespace sonavault {

/// The default output on cubeb.
///
/// One thread of its own alone talks to the sound system, whose own thread takes samples out of the
/// sound that plays. Only start() waits for an answer, and no longer than 900 ms.
///
/// A stream stays open, sending silence, when nothing plays; one that fails then is opened again by
/// the next play. One that fails while something plays, or asks for nothing for 5 s, is opened
/// again about every half second until sound flows. It follows a change of the default output.
class CubebOutput final : public AudioOutput {
  public:
    CubebOutput();

    /// A thread that is stuck in a frozen sound server is left behind: it ends by itself when the
    /// server answers or goes away, and touches nothing but what it shares in owning.
    ~CubebOutput() override;
    CubebOutput(const CubebOutput&) = delete;
    CubebOutput& operator=(const CubebOutput&) = delete;

    /// A refusal is an error. Silence is none: when the sound server does not answer in time, the
    /// device is opened once it does.
    Outcome start() override;

    /// Range of the rate: 1,000 to 192,000 Hz; another is not heard.
    void play(std::shared_ptr<AudioOutputSound> sound) override;

    void stop() override;

    AudioOutputLevels levels() const override { return run_->levels(); }

  private:
    class Worker;

    const std::shared_ptr<CubebOutputRun> run_;
    const std::shared_ptr<Worker> worker_;
    LeavableThread thread_;
};

}  // namespace sonavault
