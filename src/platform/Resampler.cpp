#include "platform/Resampler.h"

#include <soxr.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

namespace sonavault {
namespace {

// Far below the least step of any converter, far above the denormal numbers that slow a processor
// down.
constexpr float kInaudible = 1e-15F;

bool isRate(double hertz) {
    return hertz >= Resampler::kLowestRate && hertz <= Resampler::kHighestRate;
}

/// What a sample counts as. Written without branches, so that the compiler makes vectors of it.
inline float tamed(float sample) {
    const float size = std::fabs(sample);
    const float capped = size <= Resampler::kAbsurdLevel ? sample : std::copysign(1.0F, sample);
    // Comparisons with what is not a number are false.
    return size >= kInaudible && size <= std::numeric_limits<float>::max() ? capped : 0.0F;
}

/// Adds one channel, whose samples lie `stride` apart, to `sum`.
void addChannel(const float* samples, std::size_t stride, std::span<float> sum) {
    for (std::size_t i = 0; i < sum.size(); ++i) sum[i] += tamed(samples[i * stride]);
}

/// The high-quality recipe, with a filter short enough to hold little back.
///
/// The filter's length goes with the lower rate's period, and at a low rate the recipe's would hold
/// back 50 ms. There its transition band is made wider, around the Nyquist frequency; what is
/// folded over within it lies above 3.6 kHz at 8,000 Hz and above 4.5 kHz from 10,000 Hz on. From
/// 20,000 Hz on, where music comes, the recipe stands as it is.
soxr_quality_spec_t qualityFor(double lowerRate) {
    soxr_quality_spec_t quality = soxr_quality_spec(SOXR_HQ, 0);
    if (lowerRate < 10000) {
        quality.passband_end = 0.85;
        quality.stopband_begin = 1.1;
    } else if (lowerRate < 20000) {
        quality.stopband_begin = 2 - quality.passband_end;
    }
    return quality;
}

soxr_runtime_spec_t runtime() {
    soxr_runtime_spec_t spec = soxr_runtime_spec(1);
    // The blocks of the filters' transforms: as small as the filters allow. The defaults hold back
    // 42 ms at 44,100 Hz, and gain next to no speed.
    spec.log2_min_dft_size = 8;
    spec.log2_large_dft_size = 8;
    return spec;
}

using Converted = Result<std::span<const float>>;

}  // namespace

Result<std::unique_ptr<Resampler>> Resampler::create(const AudioFormat& input, double outputRate) {
    using Created = Result<std::unique_ptr<Resampler>>;
    if (!isRate(input.sampleRate)) return Created::failure("The source's rate is out of range");
    if (input.channels < 1 || input.channels > kMostChannels)
        return Created::failure("The source's channels are out of range");
    if (!isRate(outputRate)) return Created::failure("The output's rate is out of range");

    std::unique_ptr<Resampler> resampler(new Resampler(input, outputRate));
    if (input.sampleRate != outputRate) {
        const Outcome opened = resampler->openConverter();
        if (!opened) return Created::failure(opened.error());
    }
    return resampler;
}

Resampler::Resampler(const AudioFormat& input, double outputRate)
    : input_(input), outputRate_(outputRate) {}

Resampler::~Resampler() {
    if (converter_) soxr_delete(converter_);
}

Outcome Resampler::openConverter() {
    const soxr_io_spec_t samples = soxr_io_spec(SOXR_FLOAT32_I, SOXR_FLOAT32_I);
    const soxr_quality_spec_t quality = qualityFor(std::min(input_.sampleRate, outputRate_));
    const soxr_runtime_spec_t threads = runtime();
    soxr_error_t error = nullptr;
    converter_ =
        soxr_create(input_.sampleRate, outputRate_, 1, &error, &samples, &quality, &threads);
    if (!converter_ || error) return Outcome::failure(error ? error : "No memory for a resampler");
    return Done{};
}

Result<std::span<const float>> Resampler::convert(const AudioBufferView& source) {
    if (source.format != input_) return Converted::failure("The buffer is in another format");
    if (source.frames < 0 || (source.frames > 0 && !source.planes))
        return Converted::failure("The buffer holds no samples");
    mixToMono(source);
    // To the library, a call without samples may mean the end of the stream.
    if (!converter_ || mono_.empty()) return std::span<const float>(mono_);
    return changeRate();
}

void Resampler::mixToMono(const AudioBufferView& source) {
    mono_.assign(static_cast<std::size_t>(source.frames), 0.0F);
    const auto channels = static_cast<std::size_t>(input_.channels);
    if (source.frames == 0) return;
    for (std::size_t channel = 0; channel < channels; ++channel) {
        if (input_.interleaved)
            addChannel(source.planes[0] + channel, channels, mono_);
        else
            addChannel(source.planes[channel], 1, mono_);
    }
    const float weight = 1.0F / static_cast<float>(channels);
    for (float& sample : mono_) sample *= weight;
}

Result<std::span<const float>> Resampler::changeRate() {
    // More than the ratio suggests, since what was held back may come with it.
    constexpr std::size_t kMargin = 1024;
    const double ratio = outputRate_ / input_.sampleRate;
    const auto expected =
        static_cast<std::size_t>(static_cast<double>(mono_.size()) * ratio) + kMargin;
    if (output_.size() < expected) output_.resize(expected);

    std::size_t taken = 0;
    std::size_t given = 0;
    // A full output buffer may have left something behind even when all input is taken.
    while (taken < mono_.size() || given == output_.size()) {
        if (given == output_.size()) output_.resize(output_.size() + kMargin);
        std::size_t took = 0;
        std::size_t gave = 0;
        const soxr_error_t error =
            soxr_process(converter_, mono_.data() + taken, mono_.size() - taken, &took,
                         output_.data() + given, output_.size() - given, &gave);
        if (error) return Converted::failure(error);
        if (took == 0 && gave == 0 && taken < mono_.size())
            return Converted::failure("The resampler takes no samples");
        taken += took;
        given += gave;
    }
    return std::span<const float>(output_.data(), given);
}

}  // namespace sonavault
