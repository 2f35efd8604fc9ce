#include "store/Mp3LengthProbe.h"

#include <gtest/gtest.h>

#include <random>

#include "DayStreams.h"
#include "support/SyntheticMp3.h"
#include "support/TempFolder.h"

namespace sonavault::testing {
namespace {

/// Less than a sample, in which a walk counts, and far less than a frame. Units: seconds
constexpr double kNoDifference = 1e-4;
constexpr DayQuality kGood{24, 16000};
constexpr DayQuality kReallyGood{48, 22050};
constexpr std::int64_t kHalfAnHour = 50'000;  // frames at 24 kbps; 5.4 MB

class Mp3LengthProbeTest : public ::testing::Test {
  protected:
    std::optional<double> probe(const std::string& bytes) {
        writeFile(file_, bytes);
        return probeMp3Duration(file_, static_cast<std::int64_t>(bytes.size()));
    }

    /// The probe finds what a walk over everything finds.
    void expectTrueLength(const std::string& bytes, const std::string& what = {}) {
        const auto probed = probe(bytes);
        ASSERT_TRUE(probed) << what;
        EXPECT_NEAR(*probed, walkedSec(bytes), kNoDifference) << what;
    }

    TempFolder folder_;
    const std::filesystem::path file_ = folder_ / "day.mp3";
};

TEST_F(Mp3LengthProbeTest, finds_the_length_of_a_uniform_stream_of_every_quality) {
    for (const auto& quality : kDayQualities)
        expectTrueLength(dayRun(kHalfAnHour, quality), std::to_string(quality.kbps));
}

TEST_F(Mp3LengthProbeTest, finds_the_length_wherever_the_last_frame_is_cut) {
    const std::string stream = dayRun(10'000, kGood);
    for (std::size_t cut = 1; cut <= 2 * 108; ++cut)
        expectTrueLength(stream.substr(0, stream.size() - cut), std::to_string(cut));
}

TEST_F(Mp3LengthProbeTest, finds_the_seam_of_a_day_that_was_killed_and_resumed) {
    for (const auto& quality : kDayQualities)
        for (const std::int64_t before : {500, 20'000, 49'000}) {
            std::string stream = dayRun(before, quality);
            stream.resize(stream.size() - 33);
            expectTrueLength(stream + dayRun(kHalfAnHour - before, quality, 2),
                             std::to_string(quality.kbps) + " " + std::to_string(before));
        }
}

TEST_F(Mp3LengthProbeTest, finds_the_seam_of_a_day_that_was_stopped_and_resumed) {
    // Every frame is whole, but the second run pads afresh.
    expectTrueLength(dayRun(20'011, kReallyGood) + dayRun(15'000, kReallyGood, 2));
}

TEST_F(Mp3LengthProbeTest, finds_any_number_of_seams_anywhere) {
    std::mt19937 random(11);
    for (int round = 0; round < 60; ++round) {
        const auto& quality = kDayQualities[random() % kDayQualities.size()];
        std::string stream;
        for (auto runs = 1 + random() % 5; runs > 0; --runs) {
            stream += dayRun(2000 + random() % 20'000, quality, static_cast<std::uint32_t>(runs));
            stream.resize(stream.size() - random() % 70);
        }
        if (stream.size() < (std::size_t{1} << 20)) stream += dayRun(20'000, quality);
        expectTrueLength(stream, std::to_string(round));
    }
}

TEST_F(Mp3LengthProbeTest, adds_up_runs_of_different_qualities) {
    expectTrueLength(dayRun(20'000, kGood) + dayRun(20'000, kReallyGood) +
                     dayRun(20'000, {8, 8000}));
}

TEST_F(Mp3LengthProbeTest, sees_through_frames_of_one_length_but_another_rate) {
    expectTrueLength(dayRun(30'000, {16, 16000}) + dayRun(30'000, {8, 8000}) +
                     dayRun(30'000, {16, 16000}));
}

TEST_F(Mp3LengthProbeTest, steps_over_tags) {
    SyntheticMp3 mp3;
    mp3.id3v2(3000).raw(dayRun(20'000, kGood)).id3v1();
    expectTrueLength(mp3.bytes());
}

TEST_F(Mp3LengthProbeTest, leaves_a_file_to_the_walk_in_which_a_place_has_no_frames) {
    std::string stream = dayRun(kHalfAnHour, kGood);
    const std::size_t middle = stream.size() / 2;
    stream.replace(middle - 600'000, 1'200'000, std::string(1'200'000, '\0'));
    EXPECT_EQ(probe(stream), std::nullopt);
}

TEST_F(Mp3LengthProbeTest, leaves_a_small_file_to_the_walk) {
    EXPECT_EQ(probe(dayRun(1000, kGood)), std::nullopt);
    EXPECT_EQ(probe(""), std::nullopt);
}

TEST_F(Mp3LengthProbeTest, leaves_streams_without_a_cadence_to_the_walk) {
    SyntheticMp3 variable;
    for (int i = 0; i < 10'000; ++i)
        variable.frames(1, {44100, i % 2 ? 128 : 64, Mp3Shape::Padding::never, true});
    EXPECT_EQ(probe(variable.bytes()), std::nullopt);
    SyntheticMp3 alternating;
    alternating.frames(10'000, {22050, 48, Mp3Shape::Padding::alternating, false});
    EXPECT_EQ(probe(alternating.bytes()), std::nullopt);
}

TEST_F(Mp3LengthProbeTest, leaves_what_is_no_audio_to_the_walk) {
    EXPECT_EQ(probe(std::string(1'000'000, '\0')), std::nullopt);
    EXPECT_EQ(probe(std::string(1'000'000, '\xFF')), std::nullopt);
    EXPECT_EQ(probe(dayRun(100, kGood) + std::string(1'000'000, 'x')), std::nullopt);
}

TEST_F(Mp3LengthProbeTest, is_nothing_for_a_file_that_is_missing_or_has_become_shorter) {
    EXPECT_EQ(probeMp3Duration(file_, 10'000'000), std::nullopt);
    const std::string stream = dayRun(20'000, kGood);
    writeFile(file_, stream);
    EXPECT_EQ(probeMp3Duration(file_, static_cast<std::int64_t>(stream.size()) + 108),
              std::nullopt);
}

TEST_F(Mp3LengthProbeTest, counts_a_growing_file_up_to_the_size_it_was_told) {
    const std::string stream = dayRun(20'000, kGood);
    writeFile(file_, stream);
    const auto probed = probeMp3Duration(file_, std::int64_t{15'000} * 108);
    ASSERT_TRUE(probed);
    EXPECT_NEAR(*probed, 15'000 * 0.036, kNoDifference);
}

TEST_F(Mp3LengthProbeTest, looks_at_the_file_in_hand_and_not_at_what_has_its_name_now) {
    const std::string stream = dayRun(20'000, kGood);
    writeFile(file_, stream);
    const auto opened = OpenFile::open(file_);
    ASSERT_TRUE(opened);
    std::filesystem::remove(file_);
    writeFile(file_, std::string(stream.size(), 'x'));
    const auto probed = probeMp3Duration(*opened.value(), static_cast<std::int64_t>(stream.size()));
    ASSERT_TRUE(probed);
    EXPECT_NEAR(*probed, 20'000 * 0.036, kNoDifference);
}

}  // namespace
}  // namespace sonavault::testing
