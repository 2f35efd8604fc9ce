#pragma once

#include <algorithm>
#include <cmath>
#include <span>

#include "platform/AudioFormat.h"
#include "platform/SampleMath.h"

namespace sonavault {

/// The nominal length of a live peak bucket. Units: seconds
inline constexpr double kPeakBucketSec = 0.25;

/// Sums up the energy of what is recorded in buckets of a quarter of a second, on the grid of the
/// day's file.
class PeakBucket {
  public:
    /// Begins in the midst of a bucket when the file does not end on the grid, so that the buckets
    /// of the appended audio go on falling where those of the audio already in the file fall.
    PeakBucket(double sampleRate, FrameCount framesInFile)
        : bucketFrames_(
              std::max<FrameCount>(1, static_cast<FrameCount>(sampleRate * kPeakBucketSec))),
          sampleCount_(framesInFile % bucketFrames_) {}

    /// Adds samples and calls `completed` with the root mean square of each bucket that they fill.
    template <class Completed>
    void feed(std::span<const float> samples, Completed completed) {
        while (!samples.empty()) {
            const auto room = static_cast<std::size_t>(bucketFrames_ - sampleCount_);
            const auto taken = samples.first(std::min(samples.size(), room));
            squaredSum_ += sumOfSquares(taken);
            sampleCount_ += static_cast<FrameCount>(taken.size());
            samples = samples.subspan(taken.size());
            if (sampleCount_ == bucketFrames_) {
                completed(std::sqrt(squaredSum_ / static_cast<float>(sampleCount_)));
                squaredSum_ = 0;
                sampleCount_ = 0;
            }
        }
    }

  private:
    FrameCount bucketFrames_;
    FrameCount sampleCount_;
    float squaredSum_ = 0;
};

}  // namespace sonavault
