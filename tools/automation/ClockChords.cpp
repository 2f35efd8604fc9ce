#include "automation/ClockChords.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace sonavault::automation {

namespace {

constexpr long long kSecondsOfDay = 86400;

// A tone that begins at once is a click, which an encoder smears.
constexpr double kFadeSec = 0.005;

// Three tones whose crests meet rise above full scale sooner than one of the same loudness.
constexpr double kHeadroomDb = 2;

double sine(double frequency, double seconds) {
    return std::sin(2 * std::numbers::pi * frequency * seconds);
}

}  // namespace

ClockChords::ClockChords(const SignalSettings& settings)
    : sampleRate_(settings.sampleRate),
      chordPeak_(gainFromDb(settings.level - kHeadroomDb) * std::numbers::sqrt2 /
                 std::numbers::sqrt3),
      carrierPeak_(gainFromDb(settings.level - kHeadroomDb - kCarrierBelowDb) *
                   std::numbers::sqrt2) {}

void ClockChords::tune(long long secondOfDay) {
    tunedTo_ = secondOfDay;
    for (std::size_t i = 0; i < kHands.size(); ++i) {
        const Hand& hand = kHands[i];
        const auto value = secondOfDay / hand.secondsOfA % hand.values;
        frequencies_[i] = hand.lowest + hand.step * static_cast<double>(value);
    }
}

double ClockChords::chord(double inSecond) const {
    double sum = 0;
    for (const double frequency : frequencies_) sum += sine(frequency, inSecond);
    const double edge = std::min(inSecond, kChordSec - inSecond);
    return chordPeak_ * sum * std::min(1.0, edge / kFadeSec);
}

void ClockChords::fill(std::span<float> samples, WallTime first) {
    const auto whole = std::chrono::floor<std::chrono::seconds>(first.time_since_epoch());
    const double start = Seconds(first.time_since_epoch() - whole).count();
    const auto firstSecond = static_cast<long long>(whole.count());
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const double at = start + static_cast<double>(i) / sampleRate_;
        const double inSecond = at - std::floor(at);
        const auto second = (firstSecond + static_cast<long long>(at)) % kSecondsOfDay;
        if (second != tunedTo_) tune(second);
        const double value =
            inSecond < kChordSec ? chord(inSecond) : carrierPeak_ * sine(kCarrierHertz, inSecond);
        samples[i] = static_cast<float>(value);
    }
}

}  // namespace sonavault::automation
