#include "pastdays/Speech.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "automation/Random.h"
#include "automation/Voice.h"
#include "pastdays/Song.h"

namespace sonavault::pastdays {
namespace {

/// A voice made for a lower rate than it is heard at: higher, and quicker by as much.
automation::Voice voiceOf(const Speaker& speaker, unsigned seed) {
    return {static_cast<int>(kSampleRate / speaker.height), seed};
}

Samples spot(unsigned seed, double seconds) {
    Samples samples = bed(seed, seconds);
    level(samples, -22);
    mix(samples, talk(seed, {seed % 2 == 0 ? 1.35 : 0.9, -17}, seconds));
    level(samples, -12);
    fade(samples, 0.05, std::min(0.5, seconds / 4));
    return samples;
}

}  // namespace

Samples talk(unsigned seed, Speaker speaker, double seconds) {
    automation::Voice voice = voiceOf(speaker, seed);
    Samples samples(samplesIn(seconds));
    std::generate(samples.begin(), samples.end(), [&voice] { return voice.next(); });
    level(samples, speaker.dBFS);
    return samples;
}

Samples conversation(unsigned seed, double seconds) {
    constexpr std::array<Speaker, 2> kSpeakers{{{1.0, -17}, {1.3, -22}}};
    std::mt19937 random(seed);
    Samples samples;
    const std::size_t length = samplesIn(seconds);
    for (unsigned turn = 0; samples.size() < length; ++turn) {
        const double turnSec = static_cast<double>(automation::between(random, 3, 9));
        const Samples said = talk(seed + turn, kSpeakers[turn % kSpeakers.size()], turnSec);
        samples.insert(samples.end(), said.begin(), said.end());
    }
    samples.resize(length);
    return samples;
}

Samples adBreak(unsigned seed, int spots, double seconds) {
    constexpr double kGapSec = 0.25;
    Samples samples;
    for (int i = 0; i < spots; ++i) {
        const Samples one = spot(seed + static_cast<unsigned>(i), seconds / spots - kGapSec);
        samples.insert(samples.end(), one.begin(), one.end());
        samples.resize(samples.size() + samplesIn(kGapSec));
    }
    return samples;
}

Samples alert(unsigned seed, double seconds) {
    const double toneSec = std::min(8.0, seconds / 2);
    Samples samples(samplesIn(toneSec));
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const double second = static_cast<double>(i) / kSampleRate;
        const double frequency = std::fmod(second, 1) < 0.5 ? 660 : 880;
        samples[i] = static_cast<float>(std::sin(2 * std::numbers::pi * frequency * second));
    }
    level(samples, -16);
    fade(samples, 0.01, 0.01);
    const Samples said = talk(seed, {0.85, -18}, seconds - toneSec);
    samples.insert(samples.end(), said.begin(), said.end());
    return samples;
}

}  // namespace sonavault::pastdays
