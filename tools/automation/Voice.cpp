#include "automation/Voice.h"

#include <cmath>
#include <numbers>

#include "automation/Random.h"

namespace sonavault::automation {

namespace {

// The first three formants of a, e, i, o, u and the neutral vowel, in hertz.
constexpr std::array<std::array<double, 3>, 6> kVowels{{{730, 1090, 2440},
                                                        {530, 1840, 2480},
                                                        {270, 2290, 3010},
                                                        {570, 840, 2410},
                                                        {300, 870, 2240},
                                                        {500, 1500, 2500}}};
constexpr std::array<double, 3> kBandwidths{80, 110, 160};
constexpr std::array<double, 3> kWeights{1.0, 0.6, 0.3};

constexpr int kSamplesPerMove = 32;

// Brings the voice to a root mean square of about 1.
constexpr double kVoiceGain = 1.2;
constexpr float kHissGain = 0.4F;

int samplesIn(float seconds, int sampleRate) {
    return static_cast<int>(seconds * static_cast<float>(sampleRate));
}

}  // namespace

void Voice::Resonance::tune(double frequency, double bandwidth, int sampleRate) {
    const double radius = std::exp(-std::numbers::pi * bandwidth / sampleRate);
    const double angle = 2 * std::numbers::pi * frequency / sampleRate;
    a1 = 2 * radius * std::cos(angle);
    a2 = -radius * radius;
    gain = (1 - radius) * 2 * std::sin(angle);
}

double Voice::Resonance::pass(double x) {
    const double y = gain * x + a1 * y1 + a2 * y2;
    y2 = y1;
    y1 = y;
    return y;
}

Voice::Voice(int sampleRate, unsigned seed) : sampleRate_(sampleRate), random_(seed ^ 0x5A5AU) {}

float Voice::next() {
    if (pauseLeft_ > 0) {
        --pauseLeft_;
        return 0;
    }
    if (syllablePosition_ >= syllableLength_) beginSyllable();
    if (pauseLeft_ > 0) return 0;
    if (syllablePosition_ % kSamplesPerMove == 0) moveFormants();
    const bool hissing = syllablePosition_ < hissLength_;
    const double source = hissing ? 0.0 : pulse();
    double sound = 0;
    for (std::size_t i = 0; i < formants_.size(); ++i)
        sound += kWeights[i] * formants_[i].pass(source);
    const float hiss = hissing ? kHissGain * between(random_, -1, 1) : 0;
    const float shaped = envelope() * (static_cast<float>(kVoiceGain * sound) + hiss);
    ++syllablePosition_;
    return shaped;
}

void Voice::beginPhrase() {
    syllablesLeft_ = 4 + oneOf(random_, 12);
    pauseLeft_ = samplesIn(between(random_, 0.25F, 0.9F), sampleRate_);
    pitch_ = between(random_, 110, 150);
}

void Voice::beginSyllable() {
    if (syllablesLeft_-- <= 0) return beginPhrase();
    syllableLength_ = samplesIn(between(random_, 0.14F, 0.32F), sampleRate_);
    syllablePosition_ = 0;
    hissLength_ =
        oneOf(random_, 3) == 0 ? samplesIn(between(random_, 0.03F, 0.08F), sampleRate_) : 0;
    targets_ = kVowels[static_cast<std::size_t>(oneOf(random_, kVowels.size()))];
    // The melody of a phrase falls, with a stress now and then.
    pitch_ *= between(random_, 0.94F, 1.02F);
}

void Voice::moveFormants() {
    const double share = 1 - std::exp(-kSamplesPerMove / (0.03 * sampleRate_));
    for (std::size_t i = 0; i < formants_.size(); ++i) {
        frequencies_[i] += share * (targets_[i] - frequencies_[i]);
        formants_[i].tune(frequencies_[i], kBandwidths[i], sampleRate_);
    }
}

float Voice::envelope() const {
    const double position = static_cast<double>(syllablePosition_) / syllableLength_;
    return static_cast<float>(std::pow(std::sin(std::numbers::pi * position), 0.6));
}

// One rounded pulse a period, whose strength does not depend on the sample rate.
double Voice::pulse() {
    phase_ += pitch_ / sampleRate_;
    phase_ -= std::floor(phase_);
    constexpr double kOpen = 0.2;
    if (phase_ >= kOpen) return -0.5;
    return 9 * std::sin(std::numbers::pi * phase_ / kOpen) - 0.5;
}

}  // namespace sonavault::automation
