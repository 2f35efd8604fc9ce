#include "automation/Music.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "automation/Random.h"

namespace sonavault::automation {

namespace {

constexpr double kBeatsPerSecond = 100.0 / 60.0;
constexpr int kBeatsPerBar = 4;

// Semitones above the key: bass, then the three notes of the chord.
constexpr std::array<std::array<int, 4>, 4> kBars{
    {{-24, 0, 4, 7}, {-15, -3, 0, 4}, {-19, -7, -3, 0}, {-17, -5, -1, 2}}};

constexpr double kMusicGain = 2.64;

}  // namespace

Music::Music(int sampleRate, unsigned seed)
    : sampleRate_(sampleRate),
      random_(seed ^ 0xA5A5U),
      beatLength_(static_cast<int>(sampleRate / kBeatsPerSecond)),
      position_(beatLength_),
      key_(oneOf(random_, 12)) {}

float Music::next() {
    if (position_ >= beatLength_) beginBeat();
    const double sound = kMusicGain * (chord() + drums());
    ++position_;
    return static_cast<float>(sound);
}

void Music::beginBeat() {
    position_ = 0;
    drumPhase_ = 0;
    ++beat_;
    if (beat_ % (kBeatsPerBar * 16) == 0) key_ = oneOf(random_, 12);
    const auto& bar = kBars[static_cast<std::size_t>(beat_ / kBeatsPerBar) % kBars.size()];
    for (std::size_t i = 0; i < frequencies_.size(); ++i)
        frequencies_[i] = 261.63 * std::exp2((bar[i] + key_ - 6) / 12.0);
}

// Each note is a sine with two overtones that die away through the beat.
double Music::chord() {
    const double second = static_cast<double>(position_) / sampleRate_;
    const double fade = std::exp(-2.5 * second) * std::min(1.0, second / 0.004);
    double sound = 0;
    for (std::size_t i = 0; i < frequencies_.size(); ++i) {
        phases_[i] += frequencies_[i] / sampleRate_;
        phases_[i] -= std::floor(phases_[i]);
        const double angle = 2 * std::numbers::pi * phases_[i];
        sound += std::sin(angle) + 0.4 * std::sin(2 * angle) + 0.2 * std::sin(3 * angle);
    }
    return 0.4 * fade * sound;
}

double Music::drums() {
    const double second = static_cast<double>(position_) / sampleRate_;
    drumPhase_ += (50 + 110 * std::exp(-30 * second)) / sampleRate_;
    const double drum = std::exp(-9 * second) * std::sin(2 * std::numbers::pi * drumPhase_);
    const double half = std::fmod(second, 0.5 / kBeatsPerSecond);
    const double shaker = std::exp(-60 * half) * between(random_, -0.3F, 0.3F);
    return (beat_ % 2 == 0 ? drum : 0.4 * drum) + shaker;
}

}  // namespace sonavault::automation
