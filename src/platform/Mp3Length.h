#pragma once

#include <cmath>
#include <cstdint>
#include <map>

#include "platform/AudioFormat.h"
#include "platform/Mp3Header.h"

namespace sonavault {

/// What is said of a file without sound.
inline constexpr auto kNoMp3Frame = "The file holds no MPEG audio frame";

/// Adds up the length of MPEG frames, told at the rate of the first one.
///
/// Whole samples are kept for each rate, for a day of added-up seconds would be off by a few.
class Mp3Length {
  public:
    /// Range: `count` may be negative, to take frames away that were added before.
    void add(const Mp3Header& header, std::int64_t count) {
        if (firstRate_ == 0) firstRate_ = header.sampleRate;
        samplesAtRate_[header.sampleRate] += count * header.samplesPerFrame;
    }

    /// Units: hertz; 0 as long as nothing was added.
    int firstRate() const { return firstRate_; }

    /// Units: sample frames at firstRate(), with a fraction where rates are mixed.
    double exactFrames() const {
        double frames = 0;
        for (const auto& [rate, samples] : samplesAtRate_)
            frames += static_cast<double>(samples) * firstRate_ / rate;
        return frames;
    }

    FrameCount frames() const { return std::llround(exactFrames()); }

  private:
    int firstRate_ = 0;
    std::map<int, std::int64_t> samplesAtRate_;
};

}  // namespace sonavault
