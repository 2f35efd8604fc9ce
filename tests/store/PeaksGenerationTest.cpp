#include "store/PeaksGeneration.h"

#include <gtest/gtest.h>

#include <cmath>
#include <thread>

#include "support/Ffmpeg.h"
#include "support/SyntheticMp3.h"
#include "support/TempFolder.h"

namespace sonavault::testing {
namespace {

/// The root mean squares of `samples`, worked out in the plainest way.
std::vector<float> plainPeaks(const std::vector<float>& samples, std::size_t bucket,
                              std::size_t channels = 1) {
    std::vector<float> rms;
    const std::size_t frames = samples.size() / channels;
    for (std::size_t begin = 0; begin < frames; begin += bucket) {
        const std::size_t end = std::min(begin + bucket, frames);
        double squares = 0;
        for (std::size_t i = begin; i < end; ++i)
            squares += std::pow(static_cast<double>(samples[i * channels]), 2);
        rms.push_back(static_cast<float>(std::sqrt(squares / static_cast<double>(end - begin))));
    }
    return rms;
}

void expectNear(const std::vector<float>& one, const std::vector<float>& other) {
    ASSERT_EQ(one.size(), other.size());
    for (std::size_t i = 0; i < one.size(); ++i) ASSERT_NEAR(one[i], other[i], 1e-5F) << i;
}

/// Two lists of values that agree bit by bit, told without printing all of them.
::testing::AssertionResult same(const std::vector<float>& one, const std::vector<float>& other) {
    if (one.size() != other.size())
        return ::testing::AssertionFailure() << one.size() << " and " << other.size() << " values";
    for (std::size_t i = 0; i < one.size(); ++i)
        if (one[i] != other[i]) return ::testing::AssertionFailure() << "value " << i << " differs";
    return ::testing::AssertionSuccess();
}

class PeaksOf : public ::testing::Test {
  protected:
    PeaksData peaksOf(const std::filesystem::path& audio, unsigned workers = 0) const {
        auto peaks = PeaksGenerator(workers).generate(audio, 0.25);
        if (!peaks) throw std::runtime_error(peaks.error().description);
        return std::move(peaks.value());
    }
    std::string encoded(const std::string& sound, const std::string& options) const {
        encodeWithFfmpeg(folder / "made.mp3", sound, options);
        return readFile(folder / "made.mp3");
    }
    static std::string repeated(const std::string& bytes, int times) {
        std::string all;
        for (int i = 0; i < times; ++i) all += bytes;
        return all;
    }

    TempFolder folder;
    std::filesystem::path day = folder / "day.mp3";
};

TEST_F(PeaksOf, a_day_are_those_of_another_decoders_samples) {
    for (const auto* options : {"-ac 1 -ar 16000 -b:a 24k", "-ac 1 -ar 22050 -b:a 48k"}) {
        writeFile(day, encoded(lively(30.1), options));
        const auto peaks = peaksOf(day);
        const auto samples = decodeWithFfmpeg(day);
        const bool good = std::string(options).find("16000") != std::string::npos;
        expectNear(peaks.rms, plainPeaks(samples, good ? 4000 : 5513));
        EXPECT_EQ(peaks.bucketSec, good ? 0.25 : 5513.0 / 22050);
        EXPECT_EQ(peaks.totalDurationSec,
                  static_cast<double>(samples.size()) / (good ? 16000 : 22050));
        EXPECT_EQ(peaks.maxRMS, *std::max_element(peaks.rms.begin(), peaks.rms.end()));
        EXPECT_GT(peaks.maxRMS, 0.1F);
    }
}

TEST_F(PeaksOf, a_stereo_file_look_at_the_first_channel_only) {
    writeFile(day, encoded("sine=f=400:d=5[a];anullsrc=r=44100:cl=mono:d=5[b];[b][a]amerge",
                           "-ar 44100 -b:a 128k -joint_stereo 0"));
    const auto peaks = peaksOf(day);
    expectNear(peaks.rms, plainPeaks(decodeWithFfmpeg(day), 11025, 2));
    EXPECT_LT(peaks.rms[8], 0.001F);
    EXPECT_EQ(peaks.bucketSec, 0.25);
}

TEST_F(PeaksOf, a_long_day_are_the_same_on_any_number_of_threads) {
    // 25 minutes, cut into several pieces of work.
    writeFile(day, repeated(encoded(lively(50), "-ac 1 -ar 16000 -b:a 24k"), 30));
    const auto one = peaksOf(day, 1);
    EXPECT_GT(one.rms.size(), 5 * 1200U);
    for (const unsigned workers : {2U, 3U, 5U})
        EXPECT_TRUE(same(peaksOf(day, workers).rms, one.rms)) << workers;
    expectNear(one.rms, plainPeaks(decodeWithFfmpeg(day), 4000));
}

TEST_F(PeaksOf, silence_have_one_as_their_largest) {
    writeFile(day, SyntheticMp3().frames(100).bytes());
    const auto peaks = peaksOf(day);
    EXPECT_EQ(peaks.rms, std::vector<float>(15));
    EXPECT_EQ(peaks.maxRMS, 1.0F);
    ASSERT_TRUE(savePeaksFile(peaks, peaksURL(day)));
    EXPECT_EQ(loadPeaksFile(peaksURL(day)).value().maxRMS, 1.0F);
}

TEST_F(PeaksOf, a_file_without_a_frame_are_an_empty_list_and_a_sidecar_of_32_bytes) {
    const auto audio = folder / "a.m4a";
    encodeWithFfmpeg(audio, "anullsrc=r=22050:cl=mono", "-t 0 -c:a aac -movflags empty_moov");
    const auto peaks = peaksOf(audio);
    EXPECT_TRUE(peaks.rms.empty());
    EXPECT_EQ(peaks.maxRMS, 1.0F);
    EXPECT_EQ(peaks.totalDurationSec, 0);
    ASSERT_TRUE(savePeaksFile(peaks, peaksURL(audio)));
    EXPECT_EQ(std::filesystem::file_size(peaksURL(audio)), 32U);
}

TEST_F(PeaksOf, a_legacy_day_are_those_of_another_decoders_samples) {
    const auto audio = folder / "a.m4a";
    encodeWithFfmpeg(audio, lively(20), "-ac 1 -ar 22050 -c:a aac");
    auto samples = decodeWithFfmpeg(audio);
    samples.resize(20 * 22050);
    expectNear(peaksOf(audio).rms, plainPeaks(samples, 5513));
}

TEST_F(PeaksOf, a_last_part_of_a_bucket_are_over_what_there_is_of_it) {
    const std::string tone = encoded("sine=f=440:d=3", "-ac 1 -ar 16000 -b:a 24k");
    writeFile(day, tone.substr(0, 50 * 108));  // 7.2 buckets
    const auto peaks = peaksOf(day);
    ASSERT_EQ(peaks.rms.size(), 8U);
    EXPECT_NEAR(peaks.rms[7], peaks.rms[6], 0.005F);
    EXPECT_EQ(peaks.totalDurationSec, 50 * 576 / 16000.0);
}

TEST_F(PeaksOf, what_is_no_audio_are_an_error_in_words) {
    writeFile(day, "A text is no sound.\n");
    EXPECT_EQ(generatePeaks(day, 0.25).error(),
              (PeaksError{PeaksError::Code::passedOn, "The file holds no MPEG audio frame"}));
    EXPECT_EQ(generatePeaks(folder / "none.mp3", 0.25).error().description,
              "No such file or directory");
    EXPECT_EQ(generatePeaks(folder / "none.m4a", 0.25).error().description,
              "No such file or directory");
}

TEST_F(PeaksOf, buckets_that_can_not_be_held_are_an_error) {
    writeFile(day, SyntheticMp3().frames(100).bytes());
    const auto peaks = generatePeaks(day, 1e9);
    ASSERT_FALSE(peaks);
    EXPECT_EQ(peaks.error(),
              (PeaksError{PeaksError::Code::noReadBuffer, "Could not allocate read buffer"}));
}

TEST_F(PeaksOf, buckets_of_next_to_nothing_hold_one_frame) {
    writeFile(day, SyntheticMp3().frames(2).bytes());
    const auto peaks = generatePeaks(day, 0);
    ASSERT_TRUE(peaks);
    EXPECT_EQ(peaks.value().rms.size(), 1152U);
    EXPECT_EQ(peaks.value().bucketSec, 1 / 16000.0);
}

TEST_F(PeaksOf, a_grown_day_are_those_of_the_whole_day_with_the_new_part_decoded_only) {
    const std::string all = repeated(encoded(lively(50), "-ac 1 -ar 16000 -b:a 24k"), 30);
    writeFile(day, all);
    const auto whole = peaksOf(day);
    for (const std::size_t part : {100'000U, 3'000'001U, 4'000'050U}) {
        writeFile(day, all.substr(0, part));
        PeaksGenerator generator;
        ASSERT_TRUE(generator.generate(day, 0.25));
        writeFile(day, all);
        const auto grown = generator.generate(day, 0.25);
        ASSERT_TRUE(grown);
        EXPECT_TRUE(same(grown.value().rms, whole.rms)) << part;
        EXPECT_EQ(grown.value().totalDurationSec, whole.totalDurationSec);
        EXPECT_EQ(grown.value().maxRMS, whole.maxRMS);
        // A second is 3,000 bytes, 4 buckets; a few seconds of what was known are decoded again.
        EXPECT_LT(generator.lastDecodedBuckets(), (all.size() - part) / 750 + 40) << part;
        EXPECT_GE(generator.lastDecodedBuckets(), (all.size() - part) / 750) << part;
    }
}

TEST_F(PeaksOf, a_day_that_grows_often_are_right_each_time) {
    const std::string all = encoded(lively(30), "-ac 1 -ar 22050 -b:a 48k");
    PeaksGenerator generator;
    for (std::size_t size = 1000; size < all.size(); size += 7001) {
        writeFile(day, all.substr(0, size));
        const auto grown = generator.generate(day, 0.25);
        ASSERT_TRUE(grown);
        ASSERT_TRUE(same(grown.value().rms, peaksOf(day).rms)) << size;
    }
}

TEST_F(PeaksOf, another_day_and_one_that_was_begun_anew_owe_nothing_to_what_was_known) {
    const std::string first = encoded(lively(20, 1), "-ac 1 -ar 16000 -b:a 24k");
    const std::string second = encoded(lively(25, 2), "-ac 1 -ar 16000 -b:a 24k");
    PeaksGenerator generator;
    writeFile(day, first);
    ASSERT_TRUE(generator.generate(day, 0.25));
    writeFile(day, second);  // in place: the same file, larger, and another recording
    EXPECT_TRUE(same(generator.generate(day, 0.25).value().rms, peaksOf(day).rms));
    writeFile(folder / "other.mp3", first);
    EXPECT_TRUE(same(generator.generate(folder / "other.mp3", 0.25).value().rms,
                     peaksOf(folder / "other.mp3").rms));
    EXPECT_TRUE(same(generator.generate(folder / "other.mp3", 0.5).value().rms,
                     generatePeaks(folder / "other.mp3", 0.5).value().rms));
}

TEST_F(PeaksOf, a_day_that_went_away_and_came_back_are_those_of_the_new_file) {
    const std::string bytes = encoded(lively(20), "-ac 1 -ar 16000 -b:a 24k");
    PeaksGenerator generator;
    writeFile(day, bytes.substr(0, bytes.size() / 2));
    ASSERT_TRUE(generator.generate(day, 0.25));
    std::filesystem::remove(day);
    EXPECT_FALSE(generator.generate(day, 0.25));
    writeFile(day, bytes);
    EXPECT_TRUE(same(generator.generate(day, 0.25).value().rms, peaksOf(day).rms));
}

TEST_F(PeaksOf, a_day_are_given_up_when_asked_to_stop) {
    writeFile(day, SyntheticMp3().frames(10'000).bytes());
    std::stop_source stop;
    stop.request_stop();
    const auto peaks = PeaksGenerator().generate(day, 0.25, stop.get_token());
    ASSERT_FALSE(peaks);
    EXPECT_EQ(peaks.error().description, "Stopped");
}

TEST_F(PeaksOf, a_day_are_right_for_two_who_ask_at_once) {
    writeFile(day, repeated(encoded(lively(50), "-ac 1 -ar 16000 -b:a 24k"), 4));
    const auto expected = peaksOf(day);
    PeaksGenerator generator;
    std::vector<float> other;
    std::thread thread([&] { other = generator.generate(day, 0.25).value().rms; });
    const auto mine = generator.generate(day, 0.25).value().rms;
    thread.join();
    EXPECT_TRUE(same(mine, expected.rms));
    EXPECT_TRUE(same(other, expected.rms));
}

/// Sound that comes in pieces of a size of the test's choice.
class PiecewiseDecoder final : public AudioDecoder {
  public:
    explicit PiecewiseDecoder(std::vector<float> samples) : samples_(std::move(samples)) {}

    double sampleRate() const override { return 100; }
    int channels() const override { return 1; }
    FrameCount length() const override { return static_cast<FrameCount>(samples_.size()) + ends; }
    void seek(FrameCount position) override { position_ = position; }
    DecodedAudio next(FrameCount atMost) override {
        const auto left = static_cast<FrameCount>(samples_.size()) - position_;
        DecodedAudio piece{position_, std::min({atMost, left, FrameCount{7}}), {}};
        piece.planes[0] = samples_.data() + position_;
        position_ += piece.frames;
        return piece;
    }

    FrameCount ends = 0;  ///< frames that are told and do not come

  private:
    std::vector<float> samples_;
    FrameCount position_ = 0;
};

TEST(PeakBuckets, are_filled_from_pieces_of_any_size) {
    std::vector<float> samples;
    for (int i = 0; i < 1003; ++i) samples.push_back(std::sin(static_cast<float>(i)));
    PiecewiseDecoder decoder(samples);
    const auto grid = PeakGrid::of(100, 0.25, decoder.length());
    ASSERT_TRUE(grid);
    EXPECT_EQ(grid->bucketFrames, 25);
    std::vector<float> rms(grid->count());
    EXPECT_TRUE(measurePeaks(decoder, *grid, 0, grid->count(), rms, {}));
    expectNear(rms, plainPeaks(samples, 25));
}

TEST(PeakBuckets, end_where_a_decoder_gives_no_more) {
    PiecewiseDecoder decoder(std::vector<float>(60, 0.5F));
    decoder.ends = 100;
    const auto grid = PeakGrid::of(100, 0.25, decoder.length());
    std::vector<float> rms(grid->count());
    EXPECT_TRUE(measurePeaks(decoder, *grid, 0, grid->count(), rms, {}));
    EXPECT_EQ(rms, (std::vector<float>{0.5F, 0.5F, 0.5F, 0, 0, 0, 0}));
}

TEST(PeakGrid, has_whole_frames_rounded_and_at_least_one) {
    EXPECT_EQ(PeakGrid::of(44100, 0.25, 0)->bucketFrames, 11025);
    EXPECT_EQ(PeakGrid::of(22050, 0.25, 0)->bucketFrames, 5513);
    EXPECT_EQ(PeakGrid::of(8000, 0.25, 0)->bucketFrames, 2000);
    EXPECT_EQ(PeakGrid::of(8000, 0.00001, 0)->bucketFrames, 1);
    EXPECT_EQ(PeakGrid::of(8000, -5, 0)->bucketFrames, 1);
    EXPECT_EQ(PeakGrid::of(8000, std::nan(""), 0)->bucketFrames, 1);
    EXPECT_EQ(PeakGrid::of(1, 4294967295.0, 0)->bucketFrames, 4294967295);
    EXPECT_FALSE(PeakGrid::of(1, 4294967296.0, 0));
}

TEST(PeakGrid, counts_a_part_of_a_bucket_as_one) {
    EXPECT_EQ(PeakGrid::of(100, 0.25, 0)->count(), 0U);
    EXPECT_EQ(PeakGrid::of(100, 0.25, 1)->count(), 1U);
    EXPECT_EQ(PeakGrid::of(100, 0.25, 25)->count(), 1U);
    EXPECT_EQ(PeakGrid::of(100, 0.25, 26)->count(), 2U);
}

}  // namespace
}  // namespace sonavault::testing
