#pragma once

#include <algorithm>
#include <atomic>
#include <cmath>
#include <semaphore>

#include "platform/AudioFormat.h"
#include "platform/SampleRing.h"

namespace sonavault {

/// What one run of capture, from start to stop, hands from the device's callback to the delivery
/// thread.
///
/// It outlives the streams that come and go while the sound server fails and returns: all of them
/// feed the same ring, one after the other. Shared, because a device thread that is stuck in a
/// frozen sound server keeps using it.
struct CubebCaptureRun {
    /// How long the reader may be held up before samples are lost. Units: seconds
    static constexpr double kRingSeconds = 5.0;

    explicit CubebCaptureRun(const AudioFormat& asked)
        : format(asked), ring(std::llround(asked.sampleRate * kRingSeconds), asked.channels) {}

    /// The layout that the tap asked for. The ring itself is always interleaved.
    const AudioFormat format;

    SampleRing ring;

    /// Posted once for each piece that was pushed.
    std::counting_semaphore<> arrived{0};

    /// The sound system gave up the present stream.
    std::atomic<bool> failed{false};
};

}  // namespace sonavault
