#pragma once

#include <algorithm>
#include <cmath>

#include "platform/AudioFormat.h"
#include "platform/Clock.h"

namespace sonavault {

/// A shortfall up to this is left alone: 0.05 seconds at 22,050 Hz.
inline constexpr FrameCount kPadToleranceFrames = 1100;

/// The most silence that goes in ahead of one buffer. The cap spreads a long outage over the
/// buffers that follow it.
inline constexpr int kMaxPadFramesPerBuffer = 22050;

/// Least time between two sync lines. Units: seconds
inline constexpr double kSyncCheckIntervalSec = 1.0;

/// How many frames the day's file should hold at `now`, if frame 0 was heard at `anchor`. Negative
/// when the clock was set back beyond the anchor.
inline FrameCount expectedFrames(WallTime anchor, WallTime now, double sampleRate) {
    return static_cast<FrameCount>(secondsBetween(anchor, now) * sampleRate);
}

/// The frames that would still be missing once the buffer in hand is written; negative when the
/// file is ahead of the clock.
inline FrameCount deficitFrames(FrameCount expected, FrameCount written, FrameCount incoming) {
    return expected - written - incoming;
}

/// How much silence to put in ahead of the buffer. Range: 0 to kMaxPadFramesPerBuffer
inline int padFrames(FrameCount deficit) {
    if (deficit <= kPadToleranceFrames) return 0;
    return static_cast<int>(std::min<FrameCount>(deficit, kMaxPadFramesPerBuffer));
}

/// `seconds` in whole milliseconds, rounded half away from zero.
inline long long roundedMilliseconds(double seconds) {
    return std::llround(seconds * 1000);
}

}  // namespace sonavault
