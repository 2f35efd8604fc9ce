#pragma once

#include <memory>
#include <span>
#include <vector>

#include "platform/AudioFormat.h"
#include "platform/Result.h"

struct soxr;

namespace sonavault {

/// A streaming converter from any float format to mono at another rate.
///
/// The channels are mixed with equal weights, then the rate is changed with high quality: a tone
/// above the new Nyquist frequency falls by more than 120 dB. State is kept from call to call, so a
/// call may give fewer frames than the ratio suggests; what is held back stays below 25 ms, and
/// nothing is lost or added over any length.
///
/// Samples that are not finite count as silence. Samples beyond kAbsurdLevel count as full scale
/// with their sign, so that one broken buffer can't spoil those after it; louder than full scale up
/// to there passes unchanged.
///
/// Thread: one at a time; no locks inside. Nothing is allocated once the largest buffer has been
/// through.
class Resampler {
  public:
    /// Range: +60 dBFS, far above what a hot mix in float reaches and far below what makes a
    /// filter's sums lose the rest.
    static constexpr float kAbsurdLevel = 1000.0F;

    /// The rates on both sides. Units: hertz
    static constexpr double kLowestRate = 8000;
    static constexpr double kHighestRate = 192000;
    static constexpr int kMostChannels = 8;

    /// Errors: words, when the format has a rate or channels beyond the limits above, or the output
    /// rate is beyond them.
    static Result<std::unique_ptr<Resampler>> create(const AudioFormat& input, double outputRate);

    ~Resampler();
    Resampler(const Resampler&) = delete;
    Resampler& operator=(const Resampler&) = delete;

    const AudioFormat& inputFormat() const { return input_; }
    double outputRate() const { return outputRate_; }

    /// Converts all of `source`; the result stays valid until the next call.
    /// Errors: words, when `source` is not in inputFormat() or the library reports a fault.
    Result<std::span<const float>> convert(const AudioBufferView& source);

  private:
    Resampler(const AudioFormat& input, double outputRate);
    Outcome openConverter();
    void mixToMono(const AudioBufferView& source);
    Result<std::span<const float>> changeRate();

    AudioFormat input_;
    double outputRate_;
    soxr* converter_ = nullptr;  // none when the rates are equal
    std::vector<float> mono_;    // the buffer in hand, mixed
    std::vector<float> output_;  // grows, never shrinks
};

}  // namespace sonavault
