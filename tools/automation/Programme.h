#pragma once

#include <memory>

#include "automation/Music.h"
#include "automation/Signal.h"
#include "automation/Voice.h"

namespace sonavault::automation {

/// What a station might send: somebody talks for a while, music follows, and so on for ever.
class Programme final : public Signal {
  public:
    explicit Programme(const SignalSettings& settings);
    void fill(std::span<float> samples, WallTime first) override;

  private:
    void beginNextItem();

    const float gain_;
    const int sampleRate_;
    std::mt19937 random_;
    Voice voice_;
    Music music_;
    bool talking_ = false;
    std::size_t samplesLeft_ = 0;
};

}  // namespace sonavault::automation
