#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <semaphore>

#include "platform/AudioFormat.h"
#include "platform/SampleRing.h"

namespace sonavault {

/// The sound of one play, from whoever makes it ahead to the output that sends it out.
///
/// Always of two channels, interleaved. Shared by both sides, either of which may be the last to
/// let go of it.
class AudioOutputSound {
  public:
    static constexpr int kChannels = 2;

    /// How far ahead of the listener sound can be made, and so how long its maker may be held up.
    /// Units: seconds
    static constexpr double kAheadSeconds = 2.0;

    explicit AudioOutputSound(double rate)
        : sampleRate(rate),
          capacity_(std::max(1LL, std::llround(rate * kAheadSeconds))),
          ring_(capacity_, kChannels) {}

    const double sampleRate;  ///< Units: hertz

    /// Takes the first of these frames for which there is room; gives how many.
    /// Thread: the maker's.
    FrameCount push(const float* samples, FrameCount frames) {
        const FrameCount room = capacity_ - ready();
        const FrameCount pushed = ring_.push(samples, std::min(frames, room));
        pushed_.fetch_add(pushed, std::memory_order_release);
        return pushed;
    }

    /// Waits until the output has come for more or wake() was called.
    /// Thread: the maker's.
    void awaitRoom() { called_.acquire(); }

    /// Thread: any.
    void wake() { called_.release(); }

    /// The next frames in order; fewer where the maker is late or has come to the end.
    /// Thread: the output's, which must not be held up: takes no lock and allocates nothing.
    FrameCount take(float* into, FrameCount frames) {
        const FrameCount taken = ring_.pop(into, frames);
        taken_.fetch_add(taken, std::memory_order_release);
        wake();
        return taken;
    }

    /// Frames that were made and wait to be sent out. Thread: any.
    FrameCount ready() const { return pushed_.load(std::memory_order_acquire) - taken(); }

    /// Frames that were sent out. Thread: any.
    FrameCount taken() const { return taken_.load(std::memory_order_acquire); }

  private:
    const FrameCount capacity_;
    SampleRing ring_;
    std::counting_semaphore<> called_{0};

    // Only ever grow, each with one writing thread.
    alignas(64) std::atomic<FrameCount> pushed_{0};
    alignas(64) std::atomic<FrameCount> taken_{0};
};

}  // namespace sonavault
