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
/// The channels are mixed with equal weights, then the rate is changed with high quality (a tone above the new Nyquist
/// frequency falls by more than 120 dB). State is kept from call to call, so a call may give fewer frames than the ratio
/// suggests; what is held back stays well below 50 ms. Samples that are not finite count as silence and absurdly large
/// ones as full scale, so that one broken buffer cannot spoil those after it.
///
/// Thread: one at a time; no locks inside.
class Resampler {
  public:
    /// Errors: words, when the format is not 8,000 to 192,000 Hz with 1 to 8 channels or the output rate makes no sense.
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
    void mixToMono(const AudioBufferView& source);

    AudioFormat input_;
    double outputRate_;
    soxr* converter_ = nullptr;
    std::vector<float> mono_;
    std::vector<float> output_;
};

}  // namespace sonavault
