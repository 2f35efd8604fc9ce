#pragma once

#include <span>

namespace sonavault {

/// The sum of the squared samples, in single precision.
float sumOfSquares(std::span<const float> samples);

/// The root mean square of the samples, linear (1.0 is full scale); 0 for none.
float rootMeanSquare(std::span<const float> samples);

/// `rms` in dBFS; -160, the meters' floor, for 0.
float decibelsFullScale(float rms);

/// What the meters show without a signal. Units: dBFS
inline constexpr float kSilenceDb = -160.0F;

}  // namespace sonavault
