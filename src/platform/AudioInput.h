#pragma once

#include <functional>
#include <string>

#include "platform/AudioFormat.h"
#include "platform/Result.h"

namespace sonavault {

/// The computer's line input: whatever the person made the default input device.
///
/// Thread: all calls on one control thread, usually the main one. None waits longer than about a
/// second, also when the sound server is frozen, and no second one waits for the same frozen
/// server. The tap is called on a thread of the input's own, never on the control thread.
class AudioInput {
  public:
    using Tap = std::function<void(const AudioBufferView&)>;

    virtual ~AudioInput() = default;

    /// The default device's own rate and channels; a usual format (48,000 Hz, 2 channels) while
    /// there is no device.
    virtual AudioFormat outputFormat() = 0;

    /// From now on, while running, hands buffers of about `bufferFrames` frames in `format` to
    /// `tap`.
    virtual void installTap(int bufferFrames, const AudioFormat& format, Tap tap) = 0;

    /// When it returns, the tap is not running and will not be called again.
    virtual void removeTap() = 0;

    /// Begins capturing. Once begun, capture comes back by itself whenever the device or the sound
    /// server fails. Errors: the reason in words, when there is no sound server or no input device
    /// to begin with.
    virtual Outcome start() = 0;

    virtual void stop() = 0;

    /// start() worked and stop() was not called since, whether or not samples are coming at this
    /// moment.
    virtual bool isRunning() const = 0;

    /// The name of the default input device as people know it; empty when there is none.
    virtual std::string defaultDeviceName() = 0;

    /// Whether there was an input device when last looked for, and looks again in the background.
    /// Never waits; false before the first look has ended, and while one takes long.
    virtual bool lookForDevice() = 0;
};

}  // namespace sonavault
