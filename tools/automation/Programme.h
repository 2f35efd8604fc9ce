#pragma once

#include "automation/Music.h"
#include "automation/Rundown.h"
#include "automation/Signal.h"
#include "automation/Voice.h"

namespace sonavault::automation {

/// What a station might send, by the clock: the sound of the item that the rundown has on the air
/// at each moment, so that it fits the rundown's markers.
class Programme final : public Signal {
  public:
    explicit Programme(const SignalSettings& settings);
    void fill(std::span<float> samples, WallTime first) override;

  private:
    float next(ItemKind kind);
    float alertTone();

    const float gain_;
    const int sampleRate_;
    Rundown rundown_;
    Voice presenter_;
    Voice voicetracker_;
    Music songs_;
    Music jingles_;
    int alertPosition_ = 0;
};

}  // namespace sonavault::automation
