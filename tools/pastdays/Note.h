#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>

#include "pastdays/Samples.h"

namespace sonavault::pastdays {

/// One period of an instrument's sound. Sines are too slow to be computed sample by sample for an
/// hour of music.
class Timbre {
  public:
    /// The strength of the fundamental and of its overtones.
    explicit Timbre(std::array<double, 5> partials) {
        for (std::size_t i = 0; i < kLength; ++i)
            for (std::size_t partial = 0; partial < partials.size(); ++partial)
                period_[i] += static_cast<float>(
                    partials[partial] * std::sin(2 * std::numbers::pi *
                                                 static_cast<double>((partial + 1) * i) / kLength));
    }

    /// `phase`: the whole range of its type is one period.
    float at(std::uint32_t phase) const { return period_[phase >> kShift]; }

  private:
    static constexpr std::size_t kLength = 2048;
    static constexpr int kShift = 32 - 11;

    std::array<float, kLength> period_{};
};

/// A note that is struck and dies away.
class Note {
  public:
    /// `semitones`: above A at 440 Hz. `halfLife`: after so many seconds half of it is left.
    void strike(double semitones, double strength, double halfLife) {
        const double frequency = 440 * std::exp2(semitones / 12);
        step_ = static_cast<std::uint32_t>(frequency / kSampleRate * 4294967296.0);
        strength_ = static_cast<float>(strength);
        decay_ = static_cast<float>(std::exp2(-1 / (halfLife * kSampleRate)));
    }

    float next(const Timbre& timbre) {
        phase_ += step_;
        strength_ *= decay_;
        return strength_ * timbre.at(phase_);
    }

  private:
    std::uint32_t phase_ = 0;
    std::uint32_t step_ = 0;
    float strength_ = 0;
    float decay_ = 0;
};

}  // namespace sonavault::pastdays
