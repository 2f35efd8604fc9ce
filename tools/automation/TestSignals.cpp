#include "automation/TestSignals.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "automation/Random.h"

namespace sonavault::automation {

namespace {

double sinePeak(double level) {
    return gainFromDb(level) * std::numbers::sqrt2;
}

}  // namespace

void Silence::fill(std::span<float> samples, WallTime) {
    std::fill(samples.begin(), samples.end(), 0.0F);
}

Tone::Tone(const SignalSettings& settings)
    : step_(2 * std::numbers::pi * settings.frequency / settings.sampleRate),
      peak_(sinePeak(settings.level)) {}

void Tone::fill(std::span<float> samples, WallTime) {
    for (float& sample : samples) {
        sample = static_cast<float>(peak_ * std::sin(step_ * static_cast<double>(position_)));
        ++position_;
    }
}

Noise::Noise(const SignalSettings& settings)
    : peak_(gainFromDb(settings.level) * std::numbers::sqrt3_v<float>), random_(settings.seed) {}

void Noise::fill(std::span<float> samples, WallTime) {
    for (float& sample : samples) sample = peak_ * between(random_, -1.0F, 1.0F);
}

ToneBursts::ToneBursts(const SignalSettings& settings)
    : frequency_(settings.frequency),
      peak_(sinePeak(settings.level)),
      sampleRate_(settings.sampleRate) {}

void ToneBursts::fill(std::span<float> samples, WallTime first) {
    const auto sinceSecond = first.time_since_epoch() % std::chrono::seconds(1);
    const double start = Seconds(sinceSecond).count();
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const double second = start + static_cast<double>(i) / sampleRate_;
        const double inSecond = second - std::floor(second);
        samples[i] = inSecond >= kBurstSec
                         ? 0.0F
                         : static_cast<float>(
                               peak_ * std::sin(2 * std::numbers::pi * frequency_ * inSecond));
    }
}

}  // namespace sonavault::automation
