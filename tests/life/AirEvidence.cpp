#include "life/AirEvidence.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <span>

#include "automation/ClockChords.h"

namespace sonavault::testing {

namespace {

using automation::ClockChords;

// The chords are played at -22 dBFS, the tone between them at -36: half way.
constexpr float kChordDb = -29;

// Cut chords tell nothing reliable, and two in a row are none.
constexpr double kShortestChord = ClockChords::kChordSec - 0.05;
constexpr double kLongestChord = ClockChords::kChordSec + 0.06;

float levelOf(std::span<const float> samples) {
    double sum = 0;
    for (const float sample : samples) sum += static_cast<double>(sample) * sample;
    if (sum <= 0) return -200;
    return static_cast<float>(10 * std::log10(sum / static_cast<double>(samples.size())));
}

double strength(std::span<const float> samples, double frequency, double sampleRate) {
    const double twice = 2 * std::cos(2 * std::numbers::pi * frequency / sampleRate);
    double last = 0;
    double beforeLast = 0;
    for (const float sample : samples) {
        const double next = sample + twice * last - beforeLast;
        beforeLast = last;
        last = next;
    }
    return last * last + beforeLast * beforeLast - twice * last * beforeLast;
}

long long secondTold(std::span<const float> chord, double sampleRate) {
    long long second = 0;
    for (const auto& hand : ClockChords::kHands) {
        int best = 0;
        double most = -1;
        for (int value = 0; value < hand.values; ++value) {
            const double here = strength(chord, hand.lowest + hand.step * value, sampleRate);
            if (here > most) {
                most = here;
                best = value;
            }
        }
        second += static_cast<long long>(best) * hand.secondsOfA;
    }
    return second;
}

/// Where the level rises above that of a chord and falls again, to a fifth of a block.
class ChordFinder {
  public:
    explicit ChordFinder(const Heard& heard)
        : heard_(heard), step_(static_cast<std::size_t>(heard.sampleRate * kStepSec)) {}

    std::vector<HeardChord> find() {
        std::vector<HeardChord> chords;
        std::size_t begin = 0;
        bool isLoud = false;
        for (std::size_t at = 0; at + width() <= heard_.samples.size(); at += step_) {
            const bool wasLoud = isLoud;
            isLoud = levelOf({heard_.samples.data() + at, width()}) > kChordDb;
            if (isLoud && !wasLoud) begin = at;
            if (!isLoud && wasLoud) take(begin, at, chords);
        }
        return chords;
    }

  private:
    static constexpr double kStepSec = 0.002;
    std::size_t width() const { return 5 * step_; }

    void take(std::size_t begin, std::size_t end, std::vector<HeardChord>& chords) const {
        // A block is loud as soon as enough of it is.
        const double from =
            (static_cast<double>(begin) + static_cast<double>(width()) / 2) / heard_.sampleRate;
        const double length = static_cast<double>(end - begin) / heard_.sampleRate;
        if (length < kShortestChord || length > kLongestChord) return;
        chords.push_back(
            {from, secondTold({heard_.samples.data() + begin, end - begin}, heard_.sampleRate)});
    }

    const Heard& heard_;
    const std::size_t step_;
};

}  // namespace

AirEvidence evidenceOf(const Heard& heard, double startedAt) {
    AirEvidence evidence;
    evidence.startedAt = startedAt;
    evidence.chords = ChordFinder(heard).find();
    const auto block = static_cast<std::size_t>(heard.sampleRate * AirEvidence::kBlockSec);
    for (std::size_t at = 0; at + block <= heard.samples.size(); at += block)
        evidence.levels.push_back(levelOf({heard.samples.data() + at, block}));
    return evidence;
}

Heard withoutCodecDelay(Heard heard) {
    constexpr std::size_t kEncoderDelay = 576;
    constexpr std::size_t kDecoderDelay = 529;
    const auto held = std::min(kEncoderDelay + kDecoderDelay, heard.samples.size());
    heard.samples.erase(heard.samples.begin(),
                        heard.samples.begin() + static_cast<std::ptrdiff_t>(held));
    return heard;
}

}  // namespace sonavault::testing
