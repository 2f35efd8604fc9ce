#include "store/RecordingLength.h"

#include <gtest/gtest.h>

#include "DayStreams.h"
#include "support/TempFolder.h"

namespace sonavault::testing {
namespace {

constexpr DayQuality kGood{24, 16000};
constexpr std::int64_t kFramesOfAMinute = 1'667;  // 60.012 s at 24 kbps

class RecordingLengthTest : public ::testing::Test {
  protected:
    std::optional<double> lengthOf(const std::string& bytes) {
        writeFile(file_, bytes);
        return recordingLengthSec(file_, fileStamp(file_).value_or(FileStamp{}));
    }

    TempFolder folder_;
    const std::filesystem::path file_ = folder_ / "Sonavault_2026-05-08.mp3";
};

TEST(DurationLabel, is_cut_to_the_minute) {
    EXPECT_EQ(durationLabel(0), "00:00");
    EXPECT_EQ(durationLabel(59.999), "00:00");
    EXPECT_EQ(durationLabel(60), "00:01");
    EXPECT_EQ(durationLabel(3725), "01:02");
    EXPECT_EQ(durationLabel(82799.999), "22:59");
}

TEST(DurationLabel, is_a_full_day_from_23_hours_on) {
    EXPECT_EQ(durationLabel(82800), "24:00");
    EXPECT_EQ(durationLabel(90000), "24:00");
}

TEST(LiveLabel, knows_no_full_day) {
    EXPECT_EQ(liveLabel(3725.9), "01:02");
    EXPECT_EQ(liveLabel(82800), "23:00");
    EXPECT_EQ(liveLabel(86400), "24:00");
}

TEST_F(RecordingLengthTest, is_exact_for_a_short_file) {
    EXPECT_EQ(lengthOf(dayRun(1000, kGood)), 36.0);
}

TEST_F(RecordingLengthTest, is_nothing_for_what_is_no_audio) {
    EXPECT_EQ(lengthOf(""), std::nullopt);
    EXPECT_EQ(lengthOf("no audio"), std::nullopt);
    EXPECT_EQ(lengthOf(std::string(1'000'000, 'x')), std::nullopt);
}

TEST_F(RecordingLengthTest, is_true_to_the_minute_where_torn_frames_lie_on_the_grid_by_chance) {
    // Two torn frames whose bytes make up one whole frame, so close that no place lies between:
    // the file has as many bytes as ten minutes and one frame, and is a little under ten minutes.
    const std::int64_t half = 8'333;
    std::string stream = dayRun(half, kGood);
    stream += dayRun(1, kGood).substr(0, 60);
    stream += dayRun(9, kGood, 2);
    stream += dayRun(1, kGood).substr(0, 48);
    stream += dayRun(10 * kFramesOfAMinute - 4 - half - 9, kGood, 3);
    ASSERT_EQ(stream.size() % 108, 0U);
    const double frames = static_cast<double>(stream.size()) / 108;
    ASSERT_GE(frames * 0.036, 600);
    ASSERT_LT(walkedSec(stream), 600);
    const auto length = lengthOf(stream);
    ASSERT_TRUE(length);
    EXPECT_EQ(durationLabel(*length), "00:09");
}

TEST_F(RecordingLengthTest, has_the_label_of_the_walk_at_every_frame_around_a_minute) {
    const std::string stream = dayRun(10 * kFramesOfAMinute + 80, kGood);
    for (std::size_t cut = 0; cut < std::size_t{160} * 108; cut += 108 * 7 + 13) {
        const auto shorter = stream.substr(0, stream.size() - cut);
        const auto length = lengthOf(shorter);
        ASSERT_TRUE(length);
        EXPECT_EQ(durationLabel(*length), durationLabel(walkedSec(shorter))) << cut;
    }
}

TEST_F(RecordingLengthTest, of_many_files_at_once_is_each_files_own) {
    std::vector<StampedFile> files;
    std::vector<double> expected;  // 0 for what is no audio
    for (int i = 0; i < 40; ++i) {
        const auto file = folder_ / std::to_string(i);
        // Some are long enough for a few places to do.
        const int frames = i % 3 == 0 ? 0 : (i % 2 ? 6000 : 50) + i;
        writeFile(file, frames ? dayRun(frames, kGood) : "no audio");
        files.push_back({file, fileStamp(file).value_or(FileStamp{})});
        expected.push_back(frames * 0.036);
    }
    const auto lengths = recordingLengthsSec(files);
    ASSERT_EQ(lengths.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(lengths[i].has_value(), expected[i] > 0) << i;
        EXPECT_NEAR(lengths[i].value_or(0), expected[i], 1e-6) << i;
    }
    EXPECT_TRUE(recordingLengthsSec({}).empty());
}

}  // namespace
}  // namespace sonavault::testing
