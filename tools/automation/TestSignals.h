#pragma once

#include <cstdint>
#include <random>

#include "automation/Signal.h"

namespace sonavault::automation {

class Silence final : public Signal {
  public:
    void fill(std::span<float> samples, WallTime first) override;
};

/// An unbroken sine.
class Tone final : public Signal {
  public:
    explicit Tone(const SignalSettings& settings);
    void fill(std::span<float> samples, WallTime first) override;

  private:
    const double step_;
    const double peak_;
    std::int64_t position_ = 0;
};

/// White noise with evenly distributed samples.
class Noise final : public Signal {
  public:
    explicit Noise(const SignalSettings& settings);
    void fill(std::span<float> samples, WallTime first) override;

  private:
    const float peak_;
    std::mt19937 random_;
};

/// A sine for the first tenth of each second that the wall clock shows, from phase 0, and silence
/// for the rest: where a recording is cut, its burst tells to the sample how true to the clock it
/// is.
class ToneBursts final : public Signal {
  public:
    static constexpr double kBurstSec = 0.1;

    explicit ToneBursts(const SignalSettings& settings);
    void fill(std::span<float> samples, WallTime first) override;

  private:
    const double frequency_;
    const double peak_;
    const int sampleRate_;
};

}  // namespace sonavault::automation
