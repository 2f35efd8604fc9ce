// The day's file as a clock: outages, drift, stepped clocks and the days on which the clocks
// change.

#include "recorder/RecorderFixture.h"
#include "recorder/WallClockSync.h"

namespace sonavault {
namespace {

using testing::at;

/// What a line says behind `label`, as a number.
double numberIn(const std::string& line, const std::string& label) {
    const auto at = line.find(label);
    EXPECT_NE(at, std::string::npos) << line;
    return std::strtod(line.c_str() + at + label.size(), nullptr);
}

class WallClock : public testing::RecorderFixture {
  protected:
    void startLine() {
        useLineInput();
        ASSERT_TRUE(recorder_->toggleRecording());
    }

    std::vector<std::string> pads() const { return log_.containing("wall-clock pad"); }
};

TEST_F(WallClock, inserts_nothing_while_the_source_keeps_time) {
    startLine();
    runFor(30);
    EXPECT_TRUE(pads().empty());
    EXPECT_EQ(framesWritten(), 30 * 22050);
}

TEST_F(WallClock, lets_a_shortfall_of_1100_frames_be_and_fills_1101) {
    startLine();
    clock_.advance((1000 + 1100 + 0.5) / 22050);
    send(1000);
    EXPECT_TRUE(pads().empty());
    clock_.advance(1001.0 / 22050);
    send(1000);
    ASSERT_EQ(pads().size(), 1U);
    EXPECT_EQ(pads()[0],
              "Sonavault recorder: wall-clock pad — 1101 frames (0.050s) silence inserted to close "
              "gap (deficit was 1101 "
              "frames)");
    EXPECT_EQ(framesWritten(), 1000 + 1101 + 1000);
}

TEST_F(WallClock, works_a_gap_of_three_seconds_off_over_three_buffers) {
    startLine();
    runFor(2);
    clock_.advance(3);
    for (int i = 0; i < 5; ++i) send(441);
    ASSERT_EQ(pads().size(), 3U);
    EXPECT_EQ(
        pads()[0].substr(pads()[0].find("pad — ")),
        "pad — 22050 frames (1.000s) silence inserted to close gap (deficit was 65709 frames)");
    EXPECT_NE(pads()[1].find("deficit was 43218 frames"), std::string::npos) << pads()[1];
    EXPECT_NE(pads()[2].find("pad — 20727 frames (0.940s)"), std::string::npos) << pads()[2];
    EXPECT_EQ(framesWritten(), 5 * 22050 + 2 * 441)
        << "the last two buffers came while the file stood at the clock";
}

TEST_F(WallClock, works_an_outage_between_two_recordings_off_in_the_same_way) {
    startLine();
    runFor(5);
    recorder_->toggleRecording();
    clock_.advance(3);
    ASSERT_TRUE(recorder_->toggleRecording());
    const double before = static_cast<double>(framesWritten());
    for (int i = 0; i < 5; ++i) send(441);
    ASSERT_EQ(pads().size(), 3U);
    const double deficit = 8 * 22050 - before - 441;
    EXPECT_NEAR(numberIn(pads()[0], "deficit was "), deficit, 1);
    EXPECT_NEAR(numberIn(pads()[1], "deficit was "), deficit - 22050 - 441, 1);
    EXPECT_NEAR(numberIn(pads()[2], "deficit was "), deficit - 2 * (22050 + 441), 1);
    EXPECT_NEAR(static_cast<double>(framesWritten()), 8 * 22050 + 2 * 441, 1);
}

TEST_F(WallClock, never_drops_audio_of_a_source_that_runs_fast) {
    startLine();
    for (int i = 0; i < 100; ++i) {
        clock_.advance(0.09);
        send(2205);
    }
    EXPECT_EQ(framesWritten(), 100 * 2205);
    EXPECT_TRUE(pads().empty());
    const auto sync = log_.containing("Sonavault sync:");
    EXPECT_NE(sync.back().find("drift=-"), std::string::npos) << sync.back();
}

TEST_F(WallClock, tells_once_a_second_how_the_file_stands) {
    startLine();
    runFor(3);
    const auto sync = log_.containing("Sonavault sync:");
    ASSERT_EQ(sync.size(), 3U);
    EXPECT_EQ(
        sync[0],
        "Sonavault sync: wall_elapsed=0.100s expected_frames=2205 actual_frames=2205 drift=0ms");
    EXPECT_EQ(
        sync[1],
        "Sonavault sync: wall_elapsed=1.100s expected_frames=24255 actual_frames=24255 drift=0ms");
}

TEST_F(WallClock, tells_at_the_first_buffer_after_every_opening) {
    startLine();
    runFor(0.2);
    ASSERT_EQ(log_.containing("Sonavault sync:").size(), 1U);
    recorder_->toggleRecording();
    recorder_->toggleRecording();
    runFor(0.1);
    EXPECT_EQ(log_.containing("Sonavault sync:").size(), 2U);
}

TEST_F(WallClock, counts_a_silent_source_as_audio) {
    startLine();
    clock_.advance(0.2);
    send(4410, 0);
    EXPECT_EQ(host_->inputDb, -160.0F);
    EXPECT_EQ(framesWritten(), 4410);
}

TEST_F(WallClock, changes_nothing_at_a_buffer_that_yields_no_frames) {
    input_.format = {192000, 2, true};
    startLine();
    send(19200);
    const FrameCount framesBefore = framesWritten();
    const float levelBefore = host_->inputDb;
    ASSERT_GT(levelBefore, -20);
    clock_.advance(10);
    send(1);
    EXPECT_EQ(framesWritten(), framesBefore);
    EXPECT_EQ(host_->inputDb, levelBefore);
    EXPECT_TRUE(pads().empty());
}

TEST_F(WallClock, puts_the_silence_ahead_of_the_buffers_audio_and_into_the_waveform) {
    startLine();
    clock_.advance(0.1 + 5512.0 * 2 / 22050);
    send(2205);
    ASSERT_EQ(host_->peaks.size(), 2U);
    EXPECT_EQ(host_->peaks[0].first, 0);
    EXPECT_EQ(host_->peaks[0].second, 0.25);
    EXPECT_EQ(host_->peaks[1].first, 0);
    runFor(1);
    EXPECT_GT(host_->peaks[2].first, 0.1F);
}

TEST_F(WallClock, fills_what_a_clock_set_forward_leaves_open) {
    startLine();
    runFor(5);
    clock_.advance(7);
    runFor(9);
    EXPECT_NEAR(static_cast<double>(framesWritten()), 21 * 22050, kPadToleranceFrames);
    EXPECT_EQ(pads().size(), 7U);
}

TEST_F(WallClock, lets_the_file_run_ahead_when_the_clock_was_set_back) {
    startLine();
    runFor(5);
    clock_.advance(-3600);
    runFor(3);
    EXPECT_EQ(framesWritten(), 8 * 22050);
    EXPECT_TRUE(pads().empty());
    EXPECT_GE(log_.containing("Sonavault sync:").size(), 6U) << "the lines go on after the step";
    clock_.advance(3600);
    runFor(3);
    EXPECT_EQ(framesWritten(), 11 * 22050);
    EXPECT_TRUE(pads().empty());
}

TEST_F(WallClock, writes_late_audio_after_the_silence_that_stood_in_for_it) {
    startLine();
    runFor(2);
    clock_.advance(2);
    send(2205);  // the stall is over: the first buffer finds the file two seconds behind
    EXPECT_EQ(pads().size(), 1U);
    send(22050);  // and what was held up arrives at once
    send(22050);
    EXPECT_EQ(framesWritten(), 2 * 22050 + 22050 + 2205 + 2 * 22050);
}

TEST_F(WallClock, closes_a_surplus_with_the_next_outage) {
    startLine();
    for (int i = 0; i < 100; ++i) {
        clock_.advance(0.08);
        send(2205);
    }
    EXPECT_EQ(framesWritten(), 10 * 22050) << "two seconds ahead of the clock";
    recorder_->toggleRecording();
    clock_.advance(5);
    recorder_->toggleRecording();
    runFor(6);
    EXPECT_NEAR(static_cast<double>(framesWritten()), 19 * 22050, kPadToleranceFrames + 1);
}

struct DayOfChange {
    const char* zone;
    const char* start;  // a minute before the clocks change
    const char* name;
};

class DaylightSaving : public testing::RecorderFixture,
                       public ::testing::WithParamInterface<DayOfChange> {};

TEST_P(DaylightSaving, is_no_gap_and_no_surplus_because_the_file_counts_time_and_not_the_dial) {
    const testing::ScopedTimeZone zone(GetParam().zone);
    clock_.set(at(GetParam().start));
    useLineInput();
    ASSERT_TRUE(recorder_->toggleRecording());
    for (int second = 0; second < 120; ++second) {
        clock_.advance(1);
        send(22050);
    }
    EXPECT_EQ(framesWritten(), 120 * 22050);
    EXPECT_TRUE(log_.containing("wall-clock pad").empty());
}

INSTANTIATE_TEST_SUITE_P(
    BothDays, DaylightSaving,
    ::testing::Values(DayOfChange{"Europe/Berlin", "2026-03-29T00:59:00.000Z", "spring_berlin"},
                      DayOfChange{"Europe/Berlin", "2026-10-25T00:59:00.000Z", "autumn_berlin"},
                      DayOfChange{"America/New_York", "2026-03-08T06:59:00.000Z", "spring_ny"},
                      DayOfChange{"America/New_York", "2026-11-01T05:59:00.000Z", "autumn_ny"}),
    [](const auto& day) { return day.param.name; });

TEST_F(WallClock, resumed_over_the_change_of_the_clocks_pads_the_time_that_really_passed) {
    const testing::ScopedTimeZone zone("Europe/Berlin");
    clock_.set(at("2026-03-29T00:59:00.000Z"));  // 01:59, a minute before 02:00 becomes 03:00
    startLine();
    runFor(30);
    recorder_->toggleRecording();
    clock_.advance(60);
    recorder_->toggleRecording();
    EXPECT_EQ(recorder_->lastRecordingURL(), dayFile("mp3", "2026-03-29"));
    runFor(70);
    EXPECT_NEAR(static_cast<double>(framesWritten()), 160 * 22050, kPadToleranceFrames + 1);
    const auto manifest = readManifest(dayFile("json", "2026-03-29"));
    ASSERT_TRUE(manifest);
    EXPECT_EQ(manifest->startOffsetSec, 1 * 3600 + 59 * 60);
}

}  // namespace
}  // namespace sonavault
