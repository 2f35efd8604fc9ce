#include "platform/Resampler.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <random>
#include <string>
#include <vector>

namespace sonavault::testing {
namespace {

constexpr double kOutputRate = 22050;
constexpr double kPi = std::numbers::pi;

std::unique_ptr<Resampler> made(const AudioFormat& format, double outputRate = kOutputRate) {
    auto resampler = Resampler::create(format, outputRate);
    if (!resampler) throw std::runtime_error(resampler.error());
    return std::move(resampler.value());
}

std::string nameOf(const AudioFormat& format) {
    return std::to_string(static_cast<int>(format.sampleRate)) + " Hz, " +
           std::to_string(format.channels) + (format.interleaved ? " interleaved" : " planar");
}

/// Lays out `channels[c][frame]` as `format` asks and holds it for a view.
class Buffer {
  public:
    Buffer(const AudioFormat& format, const std::vector<std::vector<float>>& channels)
        : format_(format), frames_(channels[0].size()) {
        if (!format.interleaved) {
            samples_ = channels;
        } else {
            samples_.resize(1);
            for (std::size_t i = 0; i < frames_; ++i)
                for (const auto& channel : channels) samples_[0].push_back(channel[i]);
        }
        for (const auto& plane : samples_) planes_.push_back(plane.data());
    }

    AudioBufferView view() const {
        return {format_, static_cast<FrameCount>(frames_), planes_.data()};
    }

  private:
    AudioFormat format_;
    std::size_t frames_;
    std::vector<std::vector<float>> samples_;
    std::vector<const float*> planes_;
};

std::vector<float> tone(double hertz, double rate, std::size_t frames, double level = 0.5) {
    std::vector<float> samples(frames);
    for (std::size_t i = 0; i < frames; ++i)
        samples[i] =
            static_cast<float>(level * std::sin(2 * kPi * hertz * static_cast<double>(i) / rate));
    return samples;
}

/// Feeds `input` to `resampler`, in pieces whose sizes `nextSize` tells, and gives all that came
/// out.
template <class NextSize>
std::vector<float> feed(Resampler& resampler, const std::vector<float>& input, NextSize nextSize) {
    std::vector<float> output;
    for (std::size_t at = 0; at < input.size();) {
        const std::size_t size = std::min<std::size_t>(nextSize(), input.size() - at);
        const float* const plane = input.data() + at;
        const auto piece =
            resampler.convert({resampler.inputFormat(), static_cast<FrameCount>(size), &plane});
        if (!piece) throw std::runtime_error(piece.error());
        output.insert(output.end(), piece.value().begin(), piece.value().end());
        at += size;
    }
    return output;
}

std::vector<float> feedAtOnce(Resampler& resampler, const std::vector<float>& input) {
    return feed(resampler, input, [&] { return input.size(); });
}

/// The level of one frequency in the middle half of `samples`. Units: linear amplitude
double amplitudeOf(double hertz, double rate, const std::vector<float>& samples) {
    const std::size_t from = samples.size() / 4;
    const std::size_t to = samples.size() * 3 / 4;
    double sine = 0;
    double cosine = 0;
    double weights = 0;
    for (std::size_t i = from; i < to; ++i) {
        const double phase = 2 * kPi * hertz * static_cast<double>(i) / rate;
        // A window, so that tones beside this one do not leak into its measure.
        const double position = static_cast<double>(i - from) / static_cast<double>(to - from);
        const double weight = 0.5 - 0.5 * std::cos(2 * kPi * position);
        sine += weight * samples[i] * std::sin(phase);
        cosine += weight * samples[i] * std::cos(phase);
        weights += weight;
    }
    return 2 * std::hypot(sine, cosine) / weights;
}

double decibels(double ratio) {
    return 20 * std::log10(ratio);
}

double rmsOfMiddle(const std::vector<float>& samples) {
    const std::size_t from = samples.size() / 4;
    const std::size_t to = samples.size() * 3 / 4;
    double sum = 0;
    for (std::size_t i = from; i < to; ++i) sum += static_cast<double>(samples[i]) * samples[i];
    return std::sqrt(sum / static_cast<double>(to - from));
}

TEST(Resampler, keeps_the_level_of_a_tone_at_every_rate_and_layout) {
    for (const double rate : {8000., 11025., 16000., 22050., 44100., 48000., 96000., 192000.})
        for (int channels = 1; channels <= 8; ++channels)
            for (const bool interleaved : {false, true}) {
                const AudioFormat format{rate, channels, interleaved};
                auto resampler = made(format);
                const auto sound = tone(1000, rate, static_cast<std::size_t>(rate));
                const std::vector all(static_cast<std::size_t>(channels), sound);
                const Buffer buffer(format, all);
                const auto output = resampler->convert(buffer.view());
                ASSERT_TRUE(output);
                const std::vector<float> mono(output.value().begin(), output.value().end());
                EXPECT_NEAR(decibels(amplitudeOf(1000, kOutputRate, mono) / 0.5), 0, 0.01)
                    << nameOf(format);
            }
}

TEST(Resampler, mixes_all_channels_with_equal_weights) {
    for (const bool interleaved : {false, true}) {
        const AudioFormat format{22050, 4, interleaved};
        const Buffer buffer(format, {{1, 0, 0.5F}, {0, 1, 0.5F}, {0, -1, 0.5F}, {0, 2, 0.5F}});
        auto resampler = made(format);
        const auto output = resampler->convert(buffer.view());
        ASSERT_TRUE(output);
        const std::vector<float> mono(output.value().begin(), output.value().end());
        EXPECT_EQ(mono, (std::vector<float>{0.25F, 0.5F, 0.5F}));
    }
}

TEST(Resampler, hears_a_tone_of_one_channel_at_its_share) {
    const AudioFormat format{44100, 2, true};
    const Buffer buffer(format, {tone(1000, 44100, 44100), std::vector<float>(44100, 0.0F)});
    auto resampler = made(format);
    const auto output = resampler->convert(buffer.view());
    ASSERT_TRUE(output);
    const std::vector<float> mono(output.value().begin(), output.value().end());
    EXPECT_NEAR(decibels(amplitudeOf(1000, kOutputRate, mono) / 0.5), decibels(0.5), 0.01);
}

TEST(Resampler, takes_away_what_lies_above_the_new_nyquist_frequency) {
    for (const double rate : {44100., 48000., 96000., 192000.}) {
        auto resampler = made({rate, 1, false});
        const auto input = tone(12000, rate, static_cast<std::size_t>(4 * rate));
        const auto output = feedAtOnce(*resampler, input);
        EXPECT_LT(decibels(rmsOfMiddle(output) / rmsOfMiddle(input)), -120) << rate;
    }
}

TEST(Resampler, is_flat_up_to_ten_kilohertz) {
    for (const double rate : {44100., 48000., 96000.})
        for (const double hertz : {20., 100., 3000., 7000., 9000., 10000.}) {
            auto resampler = made({rate, 1, false});
            const auto output =
                feedAtOnce(*resampler, tone(hertz, rate, static_cast<std::size_t>(2 * rate)));
            EXPECT_NEAR(decibels(amplitudeOf(hertz, kOutputRate, output) / 0.5), 0, 0.1)
                << hertz << " Hz at " << rate;
        }
}

TEST(Resampler, keeps_a_low_rates_speech_flat_and_free_of_images) {
    auto resampler = made({8000, 1, false});
    for (const double hertz : {300., 1500., 3000., 3400.}) {
        const auto output = feedAtOnce(*resampler, tone(hertz, 8000, 32000));
        EXPECT_NEAR(decibels(amplitudeOf(hertz, kOutputRate, output) / 0.5), 0, 0.1) << hertz;
        EXPECT_LT(decibels(amplitudeOf(8000 - hertz, kOutputRate, output) / 0.5), -100) << hertz;
    }
}

TEST(Resampler, holds_back_less_than_25_milliseconds_after_any_call) {
    for (const double rate : {8000., 9999., 10000., 11025., 12000., 16000., 19999., 20000., 24000.,
                              32000., 44100., 48000., 88200., 96000., 176400., 192000., 44099.5})
        for (const std::size_t size : {std::size_t{1}, std::size_t{37}, std::size_t{4096}}) {
            auto resampler = made({rate, 1, false});
            const std::vector<float> piece(size, 0.25F);
            const float* const plane = piece.data();
            double fed = 0;
            double got = 0;
            double mostHeld = 0;
            while (fed < 2 * rate) {
                const auto output = resampler->convert(
                    {resampler->inputFormat(), static_cast<FrameCount>(size), &plane});
                ASSERT_TRUE(output);
                fed += static_cast<double>(size);
                got += static_cast<double>(output.value().size());
                mostHeld = std::max(mostHeld, fed / rate - got / kOutputRate);
                ASSERT_LT(got / kOutputRate, fed / rate + 0.001);
            }
            EXPECT_LT(mostHeld, 0.025) << rate << " Hz in pieces of " << size;
            EXPECT_GT(mostHeld, 0) << rate;
        }
}

TEST(Resampler, neither_loses_nor_adds_over_ten_minutes_of_pieces_of_any_size) {
    for (const double rate : {8000., 44100., 48000.}) {
        auto resampler = made({rate, 1, false});
        std::mt19937 random(7);
        std::uniform_int_distribution<int> sizes(1, 5000);
        const auto input = tone(440, rate, static_cast<std::size_t>(600 * rate));
        const auto output =
            feed(*resampler, input, [&] { return static_cast<std::size_t>(sizes(random)); });
        const double behind = 600 - static_cast<double>(output.size()) / kOutputRate;
        EXPECT_GE(behind, -0.001) << rate;
        EXPECT_LT(behind, 0.025) << rate;
    }
}

TEST(Resampler, gives_the_same_samples_however_the_input_is_cut) {
    std::mt19937 random(11);
    std::uniform_real_distribution<float> noise(-1, 1);
    for (const double rate : {8000., 22050., 44100., 48000., 192000.}) {
        std::vector<float> input(static_cast<std::size_t>(rate));
        for (float& sample : input) sample = noise(random);
        auto whole = made({rate, 1, false});
        const auto expected = feedAtOnce(*whole, input);
        for (const int largest : {1, 64, 5000}) {
            auto cut = made({rate, 1, false});
            std::uniform_int_distribution<int> sizes(1, largest);
            const auto output =
                feed(*cut, input, [&] { return static_cast<std::size_t>(sizes(random)); });
            EXPECT_EQ(output, expected) << rate << " Hz in pieces up to " << largest;
        }
    }
}

TEST(Resampler, stands_in_time_where_the_source_did) {
    for (const double rate : {8000., 44100., 192000.}) {
        std::vector<float> input(static_cast<std::size_t>(rate), 0.0F);
        const double clickAt = 0.5;
        input[static_cast<std::size_t>(clickAt * rate)] = 1;
        auto resampler = made({rate, 1, false});
        const auto output = feedAtOnce(*resampler, input);
        const auto loudest = std::max_element(output.begin(), output.end()) - output.begin();
        EXPECT_NEAR(static_cast<double>(loudest) / kOutputRate, clickAt, 0.0005) << rate;
    }
}

TEST(Resampler, passes_samples_through_when_the_rates_are_equal) {
    auto resampler = made({kOutputRate, 1, true});
    const auto input = tone(1000, kOutputRate, 5000);
    EXPECT_EQ(feed(*resampler, input, [] { return std::size_t{700}; }), input);
}

TEST(Resampler, lets_what_is_louder_than_full_scale_pass) {
    auto resampler = made({kOutputRate, 1, false});
    EXPECT_EQ(feedAtOnce(*resampler, {4.0F, -20.0F, 1000.0F}), (std::vector<float>{4, -20, 1000}));
}

TEST(Resampler, counts_absurd_samples_as_full_scale_and_broken_ones_as_silence) {
    constexpr float kInfinite = std::numeric_limits<float>::infinity();
    constexpr float kNoNumber = std::numeric_limits<float>::quiet_NaN();
    auto resampler = made({kOutputRate, 1, false});
    EXPECT_EQ(feedAtOnce(*resampler,
                         {1000.5F, -1000.5F, 1e30F, -1e30F, kInfinite, -kInfinite, kNoNumber}),
              (std::vector<float>{1, -1, 1, -1, 0, 0, 0}));
}

TEST(Resampler, counts_a_broken_channel_as_silence_and_keeps_the_others) {
    const AudioFormat format{kOutputRate, 2, true};
    const float broken = std::numeric_limits<float>::quiet_NaN();
    const Buffer buffer(format, {{broken, broken}, {0.5F, -0.5F}});
    auto resampler = made(format);
    const auto output = resampler->convert(buffer.view());
    ASSERT_TRUE(output);
    EXPECT_EQ(output.value()[0], 0.25F);
    EXPECT_EQ(output.value()[1], -0.25F);
}

TEST(Resampler, keeps_one_broken_buffer_from_spoiling_those_after_it) {
    for (const double rate : {8000., 44100., 48000., 192000.})
        for (const float broken : {std::numeric_limits<float>::quiet_NaN(),
                                   std::numeric_limits<float>::infinity(), 1e30F, -1e30F}) {
            const std::size_t second = static_cast<std::size_t>(rate);
            auto spoilt = made({rate, 1, false});
            auto clean = made({rate, 1, false});
            for (const float sample : feedAtOnce(*spoilt, std::vector<float>(512, broken)))
                ASSERT_LE(std::fabs(sample), 2.0F);
            feedAtOnce(*clean, std::vector<float>(512, 0.0F));

            const auto sound = tone(1000, rate, second);
            const auto after = feedAtOnce(*spoilt, sound);
            const auto expected = feedAtOnce(*clean, sound);
            ASSERT_EQ(after.size(), expected.size());
            // Once the filter has let go of the broken buffer, nothing of it is left but what
            // rounding leaves.
            for (std::size_t i = after.size() / 4; i < after.size(); ++i)
                ASSERT_NEAR(after[i], expected[i], 1e-6F) << rate << " Hz, " << broken;
        }
}

TEST(Resampler, turns_denormal_numbers_into_silence) {
    auto resampler = made({44100, 2, false});
    const std::vector<float> tiny(44100, std::numeric_limits<float>::denorm_min());
    const Buffer buffer({44100, 2, false}, {tiny, tiny});
    const auto output = resampler->convert(buffer.view());
    ASSERT_TRUE(output);
    ASSERT_FALSE(output.value().empty());
    for (const float sample : output.value()) ASSERT_EQ(sample, 0.0F);
}

TEST(Resampler, keeps_its_buffers_where_they_are_in_the_steady_state) {
    auto resampler = made({48000, 1, false});
    const std::vector<float> piece(4096, 0.1F);
    const float* const plane = piece.data();
    const AudioBufferView view{resampler->inputFormat(), 4096, &plane};
    const float* const address = resampler->convert(view).value().data();
    for (int i = 0; i < 500; ++i) ASSERT_EQ(resampler->convert(view).value().data(), address);
}

TEST(Resampler, gives_nothing_for_a_buffer_without_frames_and_goes_on) {
    auto resampler = made({44100, 1, false});
    auto other = made({44100, 1, false});
    const auto input = tone(1000, 44100, 9000);
    const std::vector<float> first(input.begin(), input.begin() + 4000);
    const std::vector<float> second(input.begin() + 4000, input.end());
    std::vector<float> output;
    const auto append = [&output](const std::vector<float>& more) {
        output.insert(output.end(), more.begin(), more.end());
    };

    const auto nothing = [&] { return resampler->convert({resampler->inputFormat(), 0, nullptr}); };
    EXPECT_TRUE(nothing().value().empty());
    append(feedAtOnce(*resampler, first));
    EXPECT_TRUE(nothing().value().empty());
    append(feedAtOnce(*resampler, second));
    EXPECT_EQ(output, feedAtOnce(*other, input));
}

TEST(Resampler, refuses_a_buffer_in_another_format) {
    auto resampler = made({44100, 2, true});
    const std::vector<float> samples(200, 0.0F);
    const std::vector<const float*> planes = {samples.data(), samples.data()};
    for (const AudioFormat& format :
         {AudioFormat{48000, 2, true}, AudioFormat{44100, 1, true}, AudioFormat{44100, 2, false}})
        EXPECT_EQ(resampler->convert({format, 100, planes.data()}).error(),
                  "The buffer is in another format");
    EXPECT_TRUE(resampler->convert({{44100, 2, true}, 100, planes.data()}));
}

TEST(Resampler, refuses_a_buffer_that_points_nowhere) {
    auto resampler = made({44100, 1, false});
    EXPECT_EQ(resampler->convert({{44100, 1, false}, 100, nullptr}).error(),
              "The buffer holds no samples");
    EXPECT_FALSE(resampler->convert({{44100, 1, false}, -1, nullptr}));
}

TEST(Resampler, refuses_formats_beyond_its_limits) {
    constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(Resampler::create({7999, 1, false}, 22050).error(),
              "The source's rate is out of range");
    EXPECT_FALSE(Resampler::create({192001, 1, false}, 22050));
    EXPECT_FALSE(Resampler::create({kNoNumber, 1, false}, 22050));
    EXPECT_EQ(Resampler::create({44100, 0, false}, 22050).error(),
              "The source's channels are out of range");
    EXPECT_FALSE(Resampler::create({44100, 9, false}, 22050));
    EXPECT_EQ(Resampler::create({44100, 1, false}, 0).error(), "The output's rate is out of range");
    EXPECT_FALSE(Resampler::create({44100, 1, false}, -22050));
    EXPECT_FALSE(Resampler::create({44100, 1, false}, kNoNumber));
    EXPECT_TRUE(Resampler::create({8000, 1, false}, 192000));
    EXPECT_TRUE(Resampler::create({192000, 8, true}, 8000));
}

}  // namespace
}  // namespace sonavault::testing
