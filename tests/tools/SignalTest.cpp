#include "automation/Signal.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>
#include <vector>

namespace sonavault::automation {
namespace {

const WallTime kNoon = WallTime(std::chrono::hours(20'000 * 24 + 12));

SignalSettings settingsOf(SignalKind kind, int sampleRate = 44100) {
    SignalSettings settings;
    settings.kind = kind;
    settings.sampleRate = sampleRate;
    return settings;
}

/// `seconds` of a signal, filled in pieces of `piece` samples.
std::vector<float> sound(const SignalSettings& settings, double seconds, std::size_t piece = 882,
                         WallTime start = kNoon) {
    const auto signal = makeSignal(settings);
    std::vector<float> samples(static_cast<std::size_t>(seconds * settings.sampleRate));
    for (std::size_t at = 0; at < samples.size(); at += piece) {
        const std::size_t count = std::min(piece, samples.size() - at);
        signal->fill({samples.data() + at, count},
                     after(start, static_cast<double>(at) / settings.sampleRate));
    }
    return samples;
}

double rmsDb(std::span<const float> samples) {
    double sum = 0;
    for (const float sample : samples) sum += static_cast<double>(sample) * sample;
    return 10 * std::log10(sum / static_cast<double>(samples.size()));
}

float peak(std::span<const float> samples) {
    float most = 0;
    for (const float sample : samples) most = std::max(most, std::abs(sample));
    return most;
}

/// How many times a signal rises through zero.
int rises(std::span<const float> samples) {
    int count = 0;
    for (std::size_t i = 1; i < samples.size(); ++i) count += samples[i - 1] < 0 && samples[i] >= 0;
    return count;
}

class EverySignal : public ::testing::TestWithParam<SignalKind> {};

INSTANTIATE_TEST_SUITE_P(Signal, EverySignal,
                         ::testing::Values(SignalKind::programme, SignalKind::tone,
                                           SignalKind::silence, SignalKind::noise,
                                           SignalKind::toneBursts, SignalKind::clockChords));

TEST_P(EverySignal, is_the_same_at_every_run) {
    EXPECT_EQ(sound(settingsOf(GetParam()), 3), sound(settingsOf(GetParam()), 3));
}

TEST_P(EverySignal, does_not_depend_on_the_pieces_it_is_taken_in) {
    const auto whole = sound(settingsOf(GetParam()), 2);
    const auto pieces = sound(settingsOf(GetParam()), 2, 77);
    float most = 0;
    for (std::size_t i = 0; i < whole.size(); ++i)
        most = std::max(most, std::abs(whole[i] - pieces[i]));
    EXPECT_LT(most, 1e-4F);
}

TEST_P(EverySignal, stays_below_full_scale_at_its_highest_level) {
    for (const int rate : {8000, 192000}) {
        auto settings = settingsOf(GetParam(), rate);
        settings.level = -6;
        const auto samples = sound(settings, 30);
        EXPECT_LE(peak(samples), 1.0F) << rate;
        EXPECT_TRUE(
            std::all_of(samples.begin(), samples.end(), [](float s) { return std::isfinite(s); }));
    }
}

TEST(Signal, knows_the_kinds_by_their_names) {
    EXPECT_EQ(signalKindNamed("programme"), SignalKind::programme);
    EXPECT_EQ(signalKindNamed("tone"), SignalKind::tone);
    EXPECT_EQ(signalKindNamed("silence"), SignalKind::silence);
    EXPECT_EQ(signalKindNamed("noise"), SignalKind::noise);
    EXPECT_EQ(signalKindNamed("tone-bursts"), SignalKind::toneBursts);
    EXPECT_EQ(signalKindNamed("clock-chords"), SignalKind::clockChords);
    EXPECT_FALSE(signalKindNamed("tones"));
}

TEST(Tone, has_its_frequency_and_its_level) {
    for (const int rate : {8000, 44100, 192000}) {
        auto settings = settingsOf(SignalKind::tone, rate);
        settings.frequency = 440;
        settings.level = -12;
        const auto samples = sound(settings, 5);
        EXPECT_NEAR(rmsDb(samples), -12, 0.01);
        EXPECT_NEAR(rises(samples), 5 * 440, 1);
    }
}

TEST(Noise, has_its_level_and_no_offset) {
    auto settings = settingsOf(SignalKind::noise);
    settings.level = -30;
    const auto samples = sound(settings, 5);
    EXPECT_NEAR(rmsDb(samples), -30, 0.1);
    double sum = 0;
    for (const float sample : samples) sum += sample;
    EXPECT_NEAR(sum / static_cast<double>(samples.size()), 0, 1e-3);
}

TEST(Silence, is_zero) {
    EXPECT_EQ(peak(sound(settingsOf(SignalKind::silence), 1)), 0.0F);
}

TEST(ToneBursts, sound_for_a_tenth_of_each_second_of_the_wall_clock) {
    const int rate = 48000;
    for (const double offset : {0.0, 0.25, 0.95}) {
        const auto samples =
            sound(settingsOf(SignalKind::toneBursts, rate), 4, 960, after(kNoon, offset));
        for (std::size_t i = 0; i < samples.size(); ++i) {
            const double second = offset + static_cast<double>(i) / rate;
            const double inSecond = second - std::floor(second);
            if (inSecond > 0.1001 && inSecond < 0.9999) {
                ASSERT_EQ(samples[i], 0.0F) << second;
            }
        }
        const auto nextSecond =
            static_cast<std::size_t>(std::llround((std::ceil(offset) - offset) * rate));
        const std::span burst(samples.data() + nextSecond, static_cast<std::size_t>(rate / 10));
        EXPECT_NEAR(rmsDb(burst), -20, 0.05);
        EXPECT_NEAR(burst[12], 0.1 * std::numbers::sqrt2, 1e-3);  // a quarter of a period of 1 kHz
    }
}

/// How strong a tone is in a stretch of sound; 1 is a sine of full scale.
double strength(std::span<const float> samples, double frequency, int rate) {
    std::complex<double> sum = 0;
    const double step = 2 * std::numbers::pi * frequency / rate;
    for (std::size_t i = 0; i < samples.size(); ++i)
        sum += static_cast<double>(samples[i]) * std::polar(1.0, -step * static_cast<double>(i));
    return 2 * std::abs(sum) / static_cast<double>(samples.size());
}

TEST(ClockChords, tell_the_hour_the_minute_and_the_second_and_are_faint_between) {
    const int rate = 16000;
    // 12:34:57.5, so that the next chord is that of 12:34:58.
    const auto samples =
        sound(settingsOf(SignalKind::clockChords, rate), 2, 320, after(kNoon, 34 * 60 + 57.5));
    const std::span chord(samples.data() + rate / 2, static_cast<std::size_t>(rate / 4));
    for (const double told : {500.0 + 10 * 58, 1200.0 + 10 * 34, 1900.0 + 20 * 12})
        EXPECT_GT(strength(chord, told, rate), 0.05) << told;
    for (const double untold : {500.0 + 10 * 57, 500.0 + 10 * 59, 1200.0 + 10 * 35, 1900.0})
        EXPECT_LT(strength(chord, untold, rate), 0.01) << untold;
    const std::span between(samples.data() + rate * 3 / 4, static_cast<std::size_t>(rate * 3 / 4));
    EXPECT_NEAR(rmsDb(between), rmsDb(chord) - 14, 0.2);
    EXPECT_GT(strength(between, 300, rate), 0.02);
}

TEST(Programme, keeps_its_level_on_average) {
    for (const int rate : {8000, 22050}) {
        const auto samples = sound(settingsOf(SignalKind::programme, rate), 150);
        EXPECT_NEAR(rmsDb(samples), -20, 2) << rate;
    }
}

TEST(Programme, has_talk_with_pauses_and_music_without) {
    const int rate = 22050;
    const auto samples = sound(settingsOf(SignalKind::programme, rate), 150);
    // A tenth of a second is short enough to fall into a pause between phrases.
    const auto tenth = static_cast<std::size_t>(rate / 10);
    std::vector<int> pausesInStretch(15, 0);
    for (std::size_t i = 0; i + tenth <= samples.size(); i += tenth)
        if (rmsDb({samples.data() + i, tenth}) < -60) ++pausesInStretch[i / (tenth * 100)];
    const auto quiet =
        std::count_if(pausesInStretch.begin(), pausesInStretch.end(), [](int n) { return n > 3; });
    const auto steady = std::count(pausesInStretch.begin(), pausesInStretch.end(), 0);
    EXPECT_GE(quiet, 3);
    EXPECT_GE(steady, 3);
}

TEST(Programme, is_another_with_another_seed) {
    auto other = settingsOf(SignalKind::programme);
    other.seed = 2;
    EXPECT_NE(sound(settingsOf(SignalKind::programme), 5), sound(other, 5));
}

}  // namespace
}  // namespace sonavault::automation
