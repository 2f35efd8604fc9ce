#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/AudioInput.h"
#include "platform/CubebDevice.h"

namespace sonavault {

class CubebDelivery;

/// The line input on cubeb.
///
/// The device thread alone talks to the sound system, whose own thread copies samples into a ring;
/// the delivery thread makes blocks of them and calls the tap. What the control thread asks is
/// answered within a second or not at all.
///
/// A running capture follows the default input when the person changes it. After a failure, or 5 s
/// without a sample, the device is opened again about every half second until samples flow; they
/// keep the tap's format whatever the device that came back is like.
class CubebAudioInput final : public AudioInput {
  public:
    CubebAudioInput();
    ~CubebAudioInput() override;
    CubebAudioInput(const CubebAudioInput&) = delete;
    CubebAudioInput& operator=(const CubebAudioInput&) = delete;

    /// Range: 8,000 to 192,000 Hz, 1 to 8 channels, interleaved.
    AudioFormat outputFormat() override;

    /// Hands out whole blocks of exactly `bufferFrames`. While running, capture goes on in the new
    /// format, and whatever had not filled a block of the old one is lost. Range: 1,000 to 192,000
    /// Hz, 1 to 8 channels; nothing runs in another format, nor when no thread can be had.
    void installTap(int bufferFrames, const AudioFormat& format, Tap tap) override;

    /// Waits for a tap call that is under way.
    void removeTap() override;

    /// Captures in the tap's format, or for nobody in outputFormat() when no tap was installed yet.
    ///
    /// A refusal is an error, as is a machine that has no thread left, and nothing runs then.
    /// Silence is none: when the sound server does not answer within a second, the input counts as
    /// running and capture begins with the server's answer.
    Outcome start() override;

    /// When it returns, the tap is not running and is called again only after the next start().
    void stop() override;

    bool isRunning() const override { return delivery_ != nullptr; }

    std::string defaultDeviceName() override;

    bool lookForDevice() override { return device_.lookForInput(); }

  private:
    struct Wish {
        int bufferFrames;
        AudioFormat format;
        Tap tap;
    };

    Outcome deliver(std::shared_ptr<CubebCaptureRun> run);
    void end();

    std::optional<Wish> wish_;
    CubebDevice device_;
    std::unique_ptr<CubebDelivery> delivery_;
};

}  // namespace sonavault
