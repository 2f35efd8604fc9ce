#include "recorder/WallClockSync.h"

#include <gtest/gtest.h>

#include "recorder/NonSilentWatch.h"

namespace sonavault {
namespace {

const WallTime kAnchor{std::chrono::hours(500'000)};

TEST(ExpectedFrames, counts_from_the_anchor_and_cuts) {
    EXPECT_EQ(expectedFrames(kAnchor, kAnchor, 22050), 0);
    EXPECT_EQ(expectedFrames(kAnchor, after(kAnchor, 1), 22050), 22050);
    EXPECT_EQ(expectedFrames(kAnchor, after(kAnchor, 0.99999), 22050), 22049);
    EXPECT_EQ(expectedFrames(kAnchor, after(kAnchor, 86400), 22050), 1'905'120'000);
}

TEST(ExpectedFrames, goes_below_zero_when_the_clock_was_set_back_beyond_the_anchor) {
    EXPECT_EQ(expectedFrames(kAnchor, after(kAnchor, -2), 22050), -44100);
}

TEST(PadFrames, leaves_a_deficit_of_the_tolerance_alone_and_fills_one_frame_more) {
    EXPECT_EQ(padFrames(1100), 0);
    EXPECT_EQ(padFrames(1101), 1101);
}

TEST(PadFrames, gives_at_most_one_second_a_buffer) {
    EXPECT_EQ(padFrames(22050), 22050);
    EXPECT_EQ(padFrames(22051), 22050);
    EXPECT_EQ(padFrames(10'000'000'000), 22050);
}

TEST(PadFrames, never_removes_audio) {
    EXPECT_EQ(padFrames(0), 0);
    EXPECT_EQ(padFrames(-5), 0);
    EXPECT_EQ(padFrames(-10'000'000'000), 0);
}

TEST(DeficitFrames, is_what_would_be_missing_once_the_buffer_is_written) {
    EXPECT_EQ(deficitFrames(10'000, 4'000, 2'000), 4'000);
    EXPECT_EQ(deficitFrames(10'000, 9'000, 2'000), -1'000);
}

TEST(RoundedMilliseconds, rounds_half_away_from_zero) {
    EXPECT_EQ(roundedMilliseconds(0.0005), 1);
    EXPECT_EQ(roundedMilliseconds(-0.0005), -1);
    EXPECT_EQ(roundedMilliseconds(1.2344), 1234);
}

class Watch : public ::testing::Test {
  protected:
    std::optional<std::string> after_(double seconds, float db) {
        return watchVerdict(watch_, after(kAnchor, seconds), db);
    }

    const NonSilentWatch watch_{kAnchor, "08:00:01"};
};

TEST_F(Watch, ends_at_the_first_buffer_above_the_threshold) {
    EXPECT_EQ(after_(0.1235, -49.96F),
              "Sonavault diag: first_nonsilent_after_mic_start delta=124ms (mic_start "
              "emit_clock=08:00:01, db=-50.0)");
    EXPECT_EQ(after_(7, -12.34F),
              "Sonavault diag: first_nonsilent_after_mic_start delta=7000ms (mic_start "
              "emit_clock=08:00:01, db=-12.3)");
}

TEST_F(Watch, is_not_ended_by_a_buffer_at_the_threshold) {
    EXPECT_EQ(after_(1, -50.0F), std::nullopt);
    EXPECT_EQ(after_(5.0, -50.0F), std::nullopt);
}

TEST_F(Watch, gives_up_after_its_time) {
    EXPECT_EQ(after_(5.001, -50.0F),
              "Sonavault diag: first_nonsilent_after_mic_start TIMEOUT (5.0s elapsed; mic_start "
              "emit_clock=08:00:01; "
              "buffer still ≤ -50.0 dBFS)");
}

}  // namespace
}  // namespace sonavault
