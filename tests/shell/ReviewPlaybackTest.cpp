// Listening to a day, in the program.

#include "shell/ShellFixture.h"

namespace sonavault::testing {
namespace {

constexpr auto kFailed = "Sonavault: Failed to start audio engine: there is no sound server";

class ReviewPlaybackTest : public ShellFixture {
  protected:
    const DayOnDisk shortDay_{.frames = 1000};  // 36 s

    Playback& playback() { return controller().review().playback(); }
    LoadedDay& day() { return controller().review().day(); }
};

TEST_F(ReviewPlaybackTest, opens_the_loudspeakers_at_launch_before_a_day_is_loaded) {
    haveDay("2026-03-01", shortDay_);
    output_.works = false;
    launch();
    ASSERT_FALSE(log_.lines().empty());
    EXPECT_EQ(log_.lines().front(), kFailed);
    EXPECT_EQ(log_.count(kFailed), 1);
    EXPECT_TRUE(alerts_.shown.empty());
}

TEST_F(ReviewPlaybackTest, moves_the_playhead_at_each_tick_and_ends_exactly_at_the_end) {
    haveDay("2026-03-01", shortDay_);
    launch();
    playback().jumpTo({30});
    playback().togglePlayback();
    EXPECT_TRUE(output_.playing);
    passSeconds(2);
    EXPECT_NEAR(day().playheadSec(), 32, 1e-6);
    passSeconds(5);
    EXPECT_FALSE(playback().isPlaying());
    EXPECT_EQ(day().playheadSec(), 36);
    EXPECT_FALSE(output_.playing);
}

TEST_F(ReviewPlaybackTest, stops_when_another_day_is_chosen_or_the_one_heard_is_deleted) {
    haveDay("2026-02-28", shortDay_);
    haveDay("2026-03-01", shortDay_);
    launch();
    playback().startPlayback({10});
    day().selectAndLoadRecording("2026-02-28");
    EXPECT_FALSE(playback().isPlaying());
    EXPECT_EQ(day().playheadSec(), 0);
    playback().startPlayback({10});
    auto& days = controller().review().days();
    days.deleteRecording(*days.rowOf("2026-02-28"));
    EXPECT_FALSE(playback().isPlaying());
    EXPECT_FALSE(output_.playing);
}

TEST_F(ReviewPlaybackTest, hears_todays_recording_up_to_the_press_of_play) {
    launch();
    controller().toggleRecordingFromMenu();
    playSeconds(6, 0.5F);
    passSeconds(2.2);
    ASSERT_EQ(day().loadedFileURL(), dayFile());
    const double loaded = day().loadedFile()->durationSec();
    playSeconds(10, 0.5F);
    playback().startPlayback({day().currentRecordingOffset().value});
    EXPECT_NEAR(day().loadedFile()->durationSec(), loaded + 12, 1.5)
        << "10 s of sound, and silence for the seconds in which none came";
    EXPECT_TRUE(playback().isPlaying());
}

TEST_F(ReviewPlaybackTest, quits_while_it_plays) {
    haveDay("2026-03-01", shortDay_);
    launch();
    playback().startPlayback({0});
    quit();
    EXPECT_FALSE(output_.playing);
}

}  // namespace
}  // namespace sonavault::testing
