#include "automation/Programme.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace sonavault::automation {

Programme::Programme(const SignalSettings& settings)
    : gain_(gainFromDb(settings.level)),
      sampleRate_(settings.sampleRate),
      rundown_(settings.seed),
      presenter_(settings.sampleRate, settings.seed),
      voicetracker_(settings.sampleRate, settings.seed + 1),
      songs_(settings.sampleRate, settings.seed),
      jingles_(settings.sampleRate, settings.seed + 1) {}

void Programme::fill(std::span<float> samples, WallTime first) {
    std::size_t done = 0;
    while (done < samples.size()) {
        const WallTime now = after(first, static_cast<double>(done) / sampleRate_);
        // An item begins with the sample nearest to its moment.
        const auto item = rundown_.at(after(now, 0.5 / sampleRate_));
        const auto left = std::llround(secondsBetween(now, item.end) * sampleRate_);
        const auto end =
            std::min(samples.size(), done + static_cast<std::size_t>(std::max<long long>(left, 1)));
        // Peaks bend instead of breaking at full scale.
        for (; done < end; ++done) samples[done] = std::tanh(gain_ * next(item.kind));
    }
}

float Programme::next(ItemKind kind) {
    switch (kind) {
        case ItemKind::talk:
            return presenter_.next();
        case ItemKind::voicetrack:
            return voicetracker_.next();
        case ItemKind::adBreak:
            return 0.8F * voicetracker_.next() + 0.6F * jingles_.next();
        case ItemKind::alert:
            return alertTone();
        case ItemKind::song:
            break;
    }
    return songs_.next();
}

// Two tones in turn, which nobody takes for music or for a real alert.
float Programme::alertTone() {
    const double second = static_cast<double>(alertPosition_) / sampleRate_;
    alertPosition_ = (alertPosition_ + 1) % sampleRate_;
    const double frequency = second < 0.5 ? 660 : 880;
    return static_cast<float>(std::numbers::sqrt2 *
                              std::sin(2 * std::numbers::pi * frequency * second));
}

}  // namespace sonavault::automation
