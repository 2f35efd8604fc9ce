#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/AudioFormat.h"

namespace sonavault {

/// Frames of interleaved samples on their way from one thread to one other, without a lock and
/// without allocating.
///
/// When the reader falls behind by the whole ring, the newest frames are lost and counted: what is
/// already on its way stays whole and in order.
class SampleRing {
  public:
    /// Range: at least 1 frame of at least 1 channel; less counts as 1.
    SampleRing(FrameCount capacity, int channels)
        : capacity_(static_cast<std::size_t>(std::max<FrameCount>(capacity, 1))),
          channels_(static_cast<std::size_t>(std::max(channels, 1))),
          samples_(capacity_ * channels_) {}

    /// Takes the oldest of these frames for which there is room; gives how many.
    /// Thread: the writer's.
    FrameCount push(const float* samples, FrameCount frames) {
        const auto written = written_.load(std::memory_order_relaxed);
        const auto held = written - read_.load(std::memory_order_acquire);
        const auto offered = static_cast<std::uint64_t>(std::max<FrameCount>(frames, 0));
        const auto taken = std::min<std::uint64_t>(offered, capacity_ - held);
        const auto first = std::min<std::uint64_t>(taken, capacity_ - written % capacity_);
        std::copy_n(samples, first * channels_, at(written));
        std::copy_n(samples + first * channels_, (taken - first) * channels_, samples_.data());
        written_.store(written + taken, std::memory_order_release);
        dropped_.fetch_add(offered - taken, std::memory_order_relaxed);
        return static_cast<FrameCount>(taken);
    }

    /// Moves up to `atMost` of the oldest frames to `into`; gives how many.
    /// Thread: the reader's.
    FrameCount pop(float* into, FrameCount atMost) {
        const auto read = read_.load(std::memory_order_relaxed);
        const auto held = written_.load(std::memory_order_acquire) - read;
        const auto asked = static_cast<std::uint64_t>(std::max<FrameCount>(atMost, 0));
        const auto taken = std::min<std::uint64_t>(asked, held);
        const auto first = std::min<std::uint64_t>(taken, capacity_ - read % capacity_);
        std::copy_n(at(read), first * channels_, into);
        std::copy_n(samples_.data(), (taken - first) * channels_, into + first * channels_);
        read_.store(read + taken, std::memory_order_release);
        return static_cast<FrameCount>(taken);
    }

    /// All frames that were ever offered, lost ones included: a sign of life of the writer.
    /// Thread: any.
    FrameCount offered() const {
        return static_cast<FrameCount>(written_.load(std::memory_order_relaxed)) + dropped();
    }

    /// Frames that found no room.
    /// Thread: any.
    FrameCount dropped() const {
        return static_cast<FrameCount>(dropped_.load(std::memory_order_relaxed));
    }

  private:
    float* at(std::uint64_t position) { return samples_.data() + position % capacity_ * channels_; }

    const std::size_t capacity_;
    const std::size_t channels_;
    std::vector<float> samples_;

    // Counts of frames that only ever grow, each on a cache line of its own because each has its
    // own writing thread.
    alignas(64) std::atomic<std::uint64_t> written_{0};
    alignas(64) std::atomic<std::uint64_t> read_{0};
    alignas(64) std::atomic<std::uint64_t> dropped_{0};
};

}  // namespace sonavault
