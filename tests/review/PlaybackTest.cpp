#include "review/Playback.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <memory>
#include <thread>
#include <vector>

#include "platform/LocalTime.h"
#include "review/ReviewFixture.h"
#include "support/Ffmpeg.h"

namespace sonavault::testing {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr auto kPlay = "▶";
constexpr auto kStop = "⏸";

/// Where the stand-in for a day of 36 s of audio begins: 06:30:15.
constexpr double kOffset = 23415;

/// Loudspeakers that hear as much as the test lets them.
class FakeOutput final : public AudioOutput {
  public:
    Outcome start() override {
        return works ? Outcome(Done{}) : Outcome::failure("there is no sound system");
    }
    void play(std::shared_ptr<AudioOutputSound> sound) override {
        ++plays;
        playing = std::move(sound);
    }
    void stop() override { playing.reset(); }
    AudioOutputLevels levels() const override { return shown; }

    /// The next frames of the left side, or of the right one; fewer when no more come.
    std::vector<float> hear(FrameCount frames, std::size_t side = 0) {
        std::vector<float> samples(static_cast<std::size_t>(2 * frames));
        FrameCount heard = 0;
        const auto giveUp = std::chrono::steady_clock::now() + 5s;
        while (playing && heard < frames && std::chrono::steady_clock::now() < giveUp) {
            const FrameCount taken = playing->take(samples.data() + 2 * heard, frames - heard);
            // The feeder may have to share one core with this loop.
            if (taken == 0) std::this_thread::yield();
            heard += taken;
        }
        std::vector<float> one;
        for (std::size_t i = 0; i < static_cast<std::size_t>(heard); ++i)
            one.push_back(samples[2 * i + side]);
        return one;
    }

    bool works = true;
    int plays = 0;
    AudioOutputLevels shown;
    std::shared_ptr<AudioOutputSound> playing;
};

class PlaybackTest : public ReviewFixture {
  protected:
    PlaybackTest() { window_.playback = &playback_; }
    ~PlaybackTest() override { window_.playback = nullptr; }

    /// 36 s of audio from 06:30:15 on.
    void load() {
        haveAudioFrom("2026-05-07", kOffset);
        day_.loadRecording(fileOf("2026-05-07"));
        log_.clear();
    }

    /// Sound in which no two places are alike.
    void loadLively(double seconds, const std::string& options, const std::string& suffix = "mp3") {
        const auto file = fileOf("2026-05-07", suffix);
        std::filesystem::create_directories(file.parent_path());
        encodeWithFfmpeg(file, lively(seconds), options);
        haveManifest("2026-05-07", kOffset);
        day_.loadRecording(file);
        ASSERT_EQ(day_.loadedFileURL(), file) << log_.lines().back();
    }

    /// What the file holds from `frame` on, one vector a side.
    std::vector<std::vector<float>> decoded(FrameCount frame, FrameCount frames) {
        auto decoder = std::move(AudioDecoder::open(*day_.loadedFileURL()).value());
        decoder->seek(frame);
        std::vector<std::vector<float>> sides(2,
                                              std::vector<float>(static_cast<std::size_t>(frames)));
        const std::array<float*, 2> planes{sides[0].data(), sides[1].data()};
        const FrameCount read = decoder->read(planes, frames);
        for (auto& side : sides) side.resize(static_cast<std::size_t>(read));
        return sides;
    }

    void passAndTick(double seconds) {
        clock_.advance(seconds);
        playback_.advancePlayhead();
    }

    FakeOutput output_;
    Playback playback_{window_, day_, peaks_, output_, clock_, log_};
};

TEST_F(PlaybackTest, tells_of_loudspeakers_that_do_not_open_and_goes_on) {
    output_.works = false;
    playback_.setupAudioEngine();
    EXPECT_THAT(log_.lines(),
                ElementsAre("Sonavault: Failed to start audio engine: there is no sound system"));
    load();
    playback_.startPlayback({kOffset});
    EXPECT_TRUE(playback_.isPlaying());
    EXPECT_TRUE(output_.playing) << "the output tries again";
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(PlaybackTest, says_nothing_when_the_loudspeakers_open) {
    playback_.setupAudioEngine();
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(PlaybackTest, with_nothing_loaded_changes_nothing) {
    const double playhead = day_.playheadSec();
    playback_.togglePlayback();
    EXPECT_THAT(log_.lines(), ElementsAre("Sonavault: No file loaded"));
    EXPECT_FALSE(playback_.isPlaying());
    EXPECT_EQ(day_.playheadSec(), playhead);
    EXPECT_EQ(window_.playButton, "");
    EXPECT_EQ(output_.plays, 0);
}

TEST_F(PlaybackTest, begins_where_it_is_told_and_remembers_when) {
    load();
    playback_.startPlayback({kOffset + 10});
    EXPECT_TRUE(playback_.isPlaying());
    EXPECT_EQ(playback_.playStartFromSec(), kOffset + 10);
    EXPECT_EQ(playback_.playStartHostTime(), secondsSince1970(clock_.now()));
    EXPECT_EQ(day_.playheadSec(), kOffset + 10);
    EXPECT_EQ(window_.playButton, kStop);
    EXPECT_EQ(output_.playing->sampleRate, 16000);
}

TEST_F(PlaybackTest, gives_the_samples_of_the_place_exactly_to_both_sides) {
    loadLively(20, "-ac 1 -ar 16000 -b:a 24k");
    playback_.startPlayback({kOffset + 7.25});
    const auto expected = decoded(7 * 16000 + 4000, 48000);
    EXPECT_EQ(output_.hear(40000),
              (std::vector<float>(expected[0].begin(), expected[0].begin() + 40000)));
    EXPECT_EQ(output_.hear(8000, 1),
              (std::vector<float>(expected[0].begin() + 40000, expected[0].end())));
}

TEST_F(PlaybackTest, keeps_the_sides_of_a_stereo_file_apart) {
    loadLively(5, "-ac 2 -af \"pan=stereo|c0=c0|c1=-0.5*c0\" -ar 44100 -b:a 128k");
    playback_.startPlayback({kOffset + 1});
    const auto expected = decoded(44100, 20000);
    EXPECT_EQ(output_.hear(10000, 0),
              (std::vector<float>(expected[0].begin(), expected[0].begin() + 10000)));
    EXPECT_EQ(output_.hear(10000, 1),
              (std::vector<float>(expected[1].begin() + 10000, expected[1].end())));
}

TEST_F(PlaybackTest, plays_a_legacy_day) {
    loadLively(5, "-ac 1 -ar 44100 -c:a aac -aac_pns 0", "m4a");
    playback_.startPlayback({kOffset + 2});
    EXPECT_EQ(output_.hear(44100), decoded(2 * 44100, 44100)[0]);
}

TEST_F(PlaybackTest, a_click_at_seven_starts_the_file_where_seven_is) {
    loadLively(1800, "-ac 1 -ar 8000 -b:a 8k");
    playback_.startPlayback({7 * 3600});
    EXPECT_EQ(output_.hear(4000), decoded(1785 * 8000, 4000)[0]);
}

TEST_F(PlaybackTest, before_the_first_audio_plays_that_while_the_playhead_runs_from_there) {
    loadLively(5, "-ac 1 -ar 16000 -b:a 24k");
    playback_.startPlayback({kOffset - 100});
    EXPECT_EQ(output_.hear(4000), decoded(0, 4000)[0]);
    EXPECT_EQ(day_.playheadSec(), kOffset - 100);
    passAndTick(2);
    EXPECT_NEAR(day_.playheadSec(), kOffset - 98, 1e-6);
    EXPECT_TRUE(playback_.isPlaying());
}

TEST_F(PlaybackTest, beyond_the_end_plays_the_last_frame_and_is_ended_by_the_tick) {
    loadLively(5, "-ac 1 -ar 16000 -b:a 24k");
    const auto last = day_.loadedFile()->frames - 1;
    playback_.startPlayback({80000});
    EXPECT_EQ(day_.playheadSec(), 80000);
    EXPECT_TRUE(playback_.isPlaying());
    EXPECT_EQ(output_.hear(1), decoded(last, 1)[0]);
    playback_.advancePlayhead();
    EXPECT_FALSE(playback_.isPlaying());
    EXPECT_EQ(day_.playheadSec(), kOffset + day_.loadedFile()->durationSec());
}

TEST_F(PlaybackTest, moves_the_playhead_with_the_wall_clock_though_nothing_is_heard) {
    load();
    playback_.startPlayback({kOffset});
    passAndTick(0.05);
    EXPECT_NEAR(day_.playheadSec(), kOffset + 0.05, 1e-6);
    passAndTick(20);
    EXPECT_NEAR(day_.playheadSec(), kOffset + 20.05, 1e-6);
    EXPECT_EQ(output_.plays, 1);
}

TEST_F(PlaybackTest, goes_on_from_the_playhead_when_the_clock_was_set_to_before_the_play_began) {
    load();
    playback_.startPlayback({kOffset + 10});
    passAndTick(2);
    clock_.advance(-3600);
    playback_.advancePlayhead();
    EXPECT_NEAR(day_.playheadSec(), kOffset + 12, 1e-6);
    EXPECT_EQ(playback_.playStartHostTime(), secondsSince1970(clock_.now()));
    passAndTick(5);
    EXPECT_NEAR(day_.playheadSec(), kOffset + 17, 1e-6);
    EXPECT_TRUE(playback_.isPlaying());
    EXPECT_EQ(output_.plays, 1) << "the sound goes on undisturbed";
    passAndTick(20);
    EXPECT_FALSE(playback_.isPlaying());
    EXPECT_EQ(day_.playheadSec(), kOffset + 36);
}

TEST_F(PlaybackTest, stops_with_the_playhead_exactly_at_the_end) {
    load();
    playback_.startPlayback({kOffset + 30});
    passAndTick(5.9);
    EXPECT_TRUE(playback_.isPlaying());
    const int shown = window_.playheadsShown;
    passAndTick(7);
    EXPECT_FALSE(playback_.isPlaying());
    EXPECT_EQ(day_.playheadSec(), kOffset + 36);
    EXPECT_EQ(window_.playButton, kPlay);
    EXPECT_FALSE(output_.playing);
    EXPECT_EQ(window_.playheadsShown, shown + 1);
}

TEST_F(PlaybackTest, leaves_the_playhead_alone_at_a_tick_while_stopped) {
    load();
    const int shown = window_.playheadsShown;
    passAndTick(5);
    EXPECT_EQ(day_.playheadSec(), kOffset);
    EXPECT_EQ(window_.playheadsShown, shown);
}

TEST_F(PlaybackTest, resumes_where_it_was_stopped) {
    load();
    playback_.togglePlayback();
    passAndTick(3);
    playback_.togglePlayback();
    EXPECT_FALSE(playback_.isPlaying());
    EXPECT_EQ(window_.playButton, kPlay);
    EXPECT_FALSE(output_.playing);
    passAndTick(60);
    EXPECT_NEAR(day_.playheadSec(), kOffset + 3, 1e-6);
    playback_.togglePlayback();
    EXPECT_TRUE(playback_.isPlaying());
    EXPECT_NEAR(playback_.playStartFromSec(), kOffset + 3, 1e-6);
}

TEST_F(PlaybackTest, jumps_no_further_than_the_ends_of_the_day) {
    load();
    playback_.jumpTo({90000});
    EXPECT_EQ(day_.playheadSec(), 86399.99);
    playback_.jumpTo({-5});
    EXPECT_EQ(day_.playheadSec(), 0);
}

TEST_F(PlaybackTest, jumps_to_midnight_for_what_is_no_number) {
    load();
    playback_.jumpTo({std::numeric_limits<double>::quiet_NaN()});
    EXPECT_EQ(day_.playheadSec(), 0);
    playback_.jumpTo({std::numeric_limits<double>::infinity()});
    EXPECT_EQ(day_.playheadSec(), 86399.99);
}

TEST_F(PlaybackTest, a_jump_while_stopped_moves_the_playhead_and_starts_nothing) {
    load();
    const int shown = window_.playheadsShown;
    playback_.jumpTo({kOffset + 5});
    EXPECT_EQ(day_.playheadSec(), kOffset + 5);
    EXPECT_FALSE(playback_.isPlaying());
    EXPECT_EQ(output_.plays, 0);
    EXPECT_EQ(window_.playheadsShown, shown + 1);
}

TEST_F(PlaybackTest, a_jump_while_playing_plays_on_from_there) {
    loadLively(30, "-ac 1 -ar 16000 -b:a 24k");
    playback_.startPlayback({kOffset});
    EXPECT_EQ(output_.hear(5000).size(), 5000U);
    for (const double at : {20.0, 3.5, 25.125}) {
        playback_.jumpTo({kOffset + at});
        EXPECT_TRUE(playback_.isPlaying());
        EXPECT_EQ(output_.hear(5000), decoded(std::llround(at * 16000), 5000)[0]) << at;
    }
}

TEST_F(PlaybackTest, of_a_file_without_frames_is_refused_though_the_day_loads) {
    const auto file = fileOf("2026-05-07", "m4a");
    std::filesystem::create_directories(file.parent_path());
    encodeWithFfmpeg(file, "anullsrc=r=22050:cl=mono", "-t 0 -c:a aac -movflags empty_moov");
    day_.loadRecording(file);
    ASSERT_TRUE(day_.loadedFile());
    log_.clear();
    playback_.togglePlayback();
    EXPECT_THAT(log_.lines(), ElementsAre("Sonavault: At end of file — nothing to play"));
    EXPECT_FALSE(playback_.isPlaying());
    EXPECT_EQ(output_.plays, 0);
}

TEST_F(PlaybackTest, hears_what_the_file_has_gained_and_ends_where_it_ended_at_that_play) {
    load();
    playback_.startPlayback({kOffset + 30});
    SyntheticMp3 grown;
    writeFile(fileOf("2026-05-07"), grown.frames(2000).bytes());
    passAndTick(6);
    EXPECT_FALSE(playback_.isPlaying()) << "it ends where the file ended at the play";
    EXPECT_EQ(day_.playheadSec(), kOffset + 36);
    playback_.startPlayback({kOffset + 40});
    EXPECT_EQ(day_.loadedFile()->durationSec(), 72);
    passAndTick(20);
    EXPECT_TRUE(playback_.isPlaying());
    passAndTick(12);
    EXPECT_FALSE(playback_.isPlaying());
    EXPECT_EQ(day_.playheadSec(), kOffset + 72);
}

/// A recording of each kind that a day may be.
class PlaybackOfALostFileTest : public PlaybackTest,
                                public ::testing::WithParamInterface<std::string> {
  protected:
    PlaybackOfALostFileTest() {
        const std::string options = GetParam() == "mp3" ? "-ac 1 -ar 16000 -b:a 24k"
                                                        : "-ac 1 -ar 16000 -c:a aac -aac_pns 0";
        loadLively(20, options, GetParam());
        expected_ = decoded(kFrom, kFrames)[0];
        EXPECT_TRUE(std::any_of(expected_.begin(), expected_.end(),
                                [](float sample) { return std::abs(sample) > 0.01F; }));
        log_.clear();
    }

    std::vector<float> heardFromFour() {
        playback_.startPlayback({kOffset + 4});
        return output_.hear(kFrames);
    }

    static constexpr FrameCount kFrom = 4 * 16000;
    static constexpr FrameCount kFrames = 40000;
    std::vector<float> expected_;
};

TEST_P(PlaybackOfALostFileTest, hears_what_was_open_when_it_is_deleted) {
    const double length = day_.loadedFile()->durationSec();
    std::filesystem::remove(*day_.loadedFileURL());
    EXPECT_EQ(heardFromFour(), expected_);
    EXPECT_TRUE(playback_.isPlaying());
    EXPECT_EQ(day_.loadedFile()->durationSec(), length);
    EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_P(PlaybackOfALostFileTest, hears_what_was_open_when_it_is_renamed) {
    std::filesystem::rename(*day_.loadedFileURL(), home_ / "elsewhere");
    EXPECT_EQ(heardFromFour(), expected_);
    EXPECT_EQ(heardFromFour(), expected_) << "and again";
}

TEST_P(PlaybackOfALostFileTest, hears_what_was_open_when_what_took_its_place_is_no_audio) {
    const auto file = *day_.loadedFileURL();
    std::filesystem::rename(file, home_ / "elsewhere");
    writeFile(file, "no audio");
    EXPECT_EQ(heardFromFour(), expected_);
}

INSTANTIATE_TEST_SUITE_P(Kinds, PlaybackOfALostFileTest, ::testing::Values("mp3", "m4a"),
                         [](const auto& kind) { return kind.param; });

TEST_F(PlaybackTest, has_the_waveform_of_the_day_catch_up_when_it_is_the_one_recorded) {
    load();
    peaks_.clear();
    playback_.startPlayback({kOffset});
    EXPECT_FALSE(peaks_.isGeneratingPeaks()) << "nothing is recorded";
    window_.recordedLast = fileOf("2026-05-08");
    playback_.startPlayback({kOffset});
    EXPECT_FALSE(peaks_.isGeneratingPeaks()) << "another day is recorded";
    window_.recordedLast = fileOf("2026-05-07");
    playback_.startPlayback({kOffset});
    EXPECT_TRUE(peaks_.isGeneratingPeaks());
}

TEST_F(PlaybackTest, stops_when_another_day_is_loaded_or_none) {
    load();
    haveAudio("2026-05-06");
    playback_.startPlayback({kOffset});
    day_.loadRecording(fileOf("2026-05-06"));
    EXPECT_FALSE(playback_.isPlaying());
    EXPECT_EQ(day_.playheadSec(), 0);
    playback_.startPlayback({0});
    day_.unload();
    EXPECT_FALSE(playback_.isPlaying());
    EXPECT_FALSE(output_.playing);
}

TEST_F(PlaybackTest, takes_sound_that_was_held_up_back_to_the_playhead) {
    loadLively(30, "-ac 1 -ar 16000 -b:a 24k");
    playback_.startPlayback({kOffset + 2});
    EXPECT_EQ(output_.hear(1600).size(), 1600U);
    passAndTick(0.1);
    passAndTick(10);  // and nothing is heard: the sound server is away
    EXPECT_EQ(output_.plays, 1);
    EXPECT_EQ(output_.hear(1600).size(), 1600U);
    passAndTick(0.1);
    EXPECT_EQ(output_.plays, 2);
    EXPECT_EQ(playback_.playStartFromSec(), kOffset + 2);
    const auto place = std::llround((day_.playheadSec() - kOffset) * 16000);
    const auto heard = output_.hear(4000);
    const auto expected = decoded(place - 1, 4002)[0];
    const auto at = std::search(expected.begin(), expected.end(), heard.begin(), heard.end());
    EXPECT_NE(at, expected.end()) << "to the frame, but for the clock's rounding";
}

TEST_F(PlaybackTest, skips_nothing_of_the_beginning_when_the_device_is_slow_to_open) {
    loadLively(30, "-ac 1 -ar 16000 -b:a 24k");
    playback_.startPlayback({kOffset + 2});
    passAndTick(2.5);
    for (int i = 0; i < 20; ++i) {
        const auto heard = output_.hear(800);
        if (i == 0) {
            EXPECT_EQ(heard, decoded(2 * 16000, 800)[0]);
        }
        passAndTick(0.05);
    }
    EXPECT_EQ(output_.plays, 1);
    passAndTick(1);
    EXPECT_EQ(output_.hear(800).size(), 800U);
    passAndTick(0.05);
    EXPECT_EQ(output_.plays, 2) << "what is held up later is caught up with";
}

TEST_F(PlaybackTest, begins_where_the_playhead_is_when_the_device_was_away_for_long) {
    loadLively(30, "-ac 1 -ar 16000 -b:a 24k");
    playback_.startPlayback({kOffset + 2});
    passAndTick(10);
    EXPECT_EQ(output_.hear(800).size(), 800U);
    passAndTick(0.05);
    EXPECT_EQ(output_.plays, 2);
}

TEST_F(PlaybackTest, plays_on_undisturbed_while_the_sound_keeps_up) {
    loadLively(10, "-ac 1 -ar 16000 -b:a 24k");
    playback_.startPlayback({kOffset});
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(output_.hear(800).size(), 800U);
        passAndTick(0.05);
    }
    EXPECT_EQ(output_.plays, 1);
}

TEST_F(PlaybackTest, shows_the_louder_side_as_the_level) {
    output_.shown = {-20, -12};
    EXPECT_EQ(playback_.playbackLevelDbL(), -20);
    EXPECT_EQ(playback_.playbackLevelDbR(), -12);
    EXPECT_EQ(playback_.playbackLevelDb(), -12);
}

}  // namespace
}  // namespace sonavault::testing
