#pragma once

#include <memory>

#include "platform/AudioOutputSound.h"
#include "platform/Result.h"
#include "platform/SampleMath.h"

namespace sonavault {

/// How loud each side is. Units: dBFS
struct AudioOutputLevels {
    float left = kSilenceDb;
    float right = kSilenceDb;
};

/// The computer's loudspeakers: whatever the person made the default output device.
///
/// Thread: all calls on one control thread, usually the main one. Only start() waits, and no longer
/// than about a second, also when the sound server is frozen.
class AudioOutput {
  public:
    virtual ~AudioOutput() = default;

    /// Opens the device and sends silence, so that the first play is heard at once.
    ///
    /// Errors: the reason in words, when there is no sound server or no output device. Nothing is
    /// lost by that: the next play tries again.
    virtual Outcome start() = 0;

    /// From now on `sound` is heard instead of what was heard before, as fast as it is made.
    ///
    /// The device is opened for it if it has to be, and again whenever it fails, until sound flows
    /// or stop() is called. What is missed meanwhile is heard late, unless another play follows.
    virtual void play(std::shared_ptr<AudioOutputSound> sound) = 0;

    /// Silence from now on.
    virtual void stop() = 0;

    /// Of the latest 1,024 frames that were sent out, silent ones included; the floor while nothing
    /// is sent out.
    virtual AudioOutputLevels levels() const = 0;
};

}  // namespace sonavault
