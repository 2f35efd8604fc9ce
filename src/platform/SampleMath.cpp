#include "platform/SampleMath.h"

#include <array>
#include <cmath>
#include <numeric>

namespace sonavault {

float sumOfSquares(std::span<const float> samples) {
    // Eight running sums side by side, so that the compiler may use vector instructions without
    // changing the result.
    std::array<float, 8> sums{};
    std::size_t i = 0;
    for (; i + sums.size() <= samples.size(); i += sums.size())
        for (std::size_t lane = 0; lane < sums.size(); ++lane)
            sums[lane] += samples[i + lane] * samples[i + lane];
    float rest = 0;
    for (; i < samples.size(); ++i) rest += samples[i] * samples[i];
    return std::accumulate(sums.begin(), sums.end(), rest);
}

float rootMeanSquare(std::span<const float> samples) {
    if (samples.empty()) return 0;
    return std::sqrt(sumOfSquares(samples) / static_cast<float>(samples.size()));
}

float decibelsFullScale(float rms) {
    return rms > 0 ? 20.0F * std::log10(rms) : kSilenceDb;
}

}  // namespace sonavault
