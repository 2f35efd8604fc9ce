#include "automation/Programme.h"

#include <algorithm>
#include <cmath>

#include "automation/Random.h"

namespace sonavault::automation {

Programme::Programme(const SignalSettings& settings)
    : gain_(gainFromDb(settings.level)),
      sampleRate_(settings.sampleRate),
      random_(settings.seed),
      voice_(settings.sampleRate, settings.seed),
      music_(settings.sampleRate, settings.seed) {}

void Programme::fill(std::span<float> samples, WallTime) {
    for (float& sample : samples) {
        if (samplesLeft_ == 0) beginNextItem();
        --samplesLeft_;
        const float sound = gain_ * (talking_ ? voice_.next() : music_.next());
        // Peaks bend instead of breaking at full scale.
        sample = std::tanh(sound);
    }
}

void Programme::beginNextItem() {
    talking_ = !talking_;
    const float seconds = talking_ ? between(random_, 8, 20) : between(random_, 10, 25);
    samplesLeft_ = static_cast<std::size_t>(seconds * static_cast<float>(sampleRate_));
}

}  // namespace sonavault::automation
