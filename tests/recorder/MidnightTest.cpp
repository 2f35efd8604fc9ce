// The change of day in the midst of a recording.

#include <gmock/gmock.h>

#include <atomic>
#include <thread>

#include "platform/AudioFileInfo.h"
#include "recorder/RecorderFixture.h"
#include "recorder/WallClockSync.h"
#include "support/Eventually.h"

namespace sonavault {
namespace {

using testing::at;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr auto kFiring = "Sonavault recorder: midnight rollover firing";
constexpr auto kNext = "2026-03-03";
constexpr double kTolerance = kPadToleranceFrames + 1;

class Midnight : public testing::RecorderFixture {
  protected:
    /// Records from the line input from this moment on.
    void recordFrom(const std::string& utc) {
        clock_.set(at(utc));
        useLineInput();
        ASSERT_TRUE(recorder_->toggleRecording());
    }
    void recordLinkFrom(const std::string& utc) {
        clock_.set(at(utc));
        useLink();
        handshake();
        ASSERT_TRUE(recorder_->toggleRecording());
    }

    double secondsIn(const std::string& date) const {
        return static_cast<double>(existingFramesAt(dayFile("mp3", date), 22050)) / 22050;
    }
    RecordingManifest manifest(const std::string& date) const {
        return readManifest(dayFile("json", date)).value_or(RecordingManifest{});
    }
    bool exists(const std::string& suffix, const std::string& date) const {
        return std::filesystem::exists(dayFile(suffix, date));
    }
    /// Where the file in hand stands against the clock. Units: frames, positive when behind
    double drift(const std::string& date) const {
        const WallTime start = at(manifest(date).startedAtIso8601.value_or(""));
        return secondsBetween(start, clock_.now()) * 22050 - static_cast<double>(framesWritten());
    }
};

TEST_F(Midnight, changes_the_files_one_second_after_it_and_nothing_else) {
    recordFrom("2026-03-02T22:59:50.0Z");
    testing::writeFile(dayFile("peaks", kNext), "stale");
    testing::writeFile(dayFile("peaks"), "of the day until now");
    log_.clear();
    runFor(10.9);
    EXPECT_FALSE(exists("mp3", kNext));
    runFor(0.1);

    const auto said = log_.containing("Sonavault recorder:");
    EXPECT_THAT(
        said,
        ElementsAre(kFiring, "Sonavault recorder: stopped → " + dayFile("mp3").string(),
                    "Sonavault recorder: quality from user preference (Good) — 22050 Hz, 24 kbps",
                    "Sonavault recorder: wall-clock anchor set fresh (existing=0.000s)",
                    "Sonavault recorder: rolled over → " + dayFile("mp3", kNext).string(),
                    "Sonavault recorder: midnight rollover armed in 1440m 0s"));
    EXPECT_EQ(host_->status(), "Rolled over → Sonavault_2026-03-03.mp3");
    EXPECT_TRUE(recorder_->isRecording());
    EXPECT_TRUE(host_->isRecording);
    EXPECT_TRUE(input_.isRunning() && input_.hasTap());
    EXPECT_EQ(recorder_->lastRecordingURL(), dayFile("mp3", kNext));
    EXPECT_FALSE(exists("peaks", kNext));
    EXPECT_FALSE(std::filesystem::exists(dayFile("peaks")));

    runFor(5);
    recorder_->toggleRecording();
    EXPECT_NEAR(secondsIn("2026-03-02"), 11, 0.2);
    EXPECT_NEAR(secondsIn(kNext), 5.1, 0.2) << "with the buffer that came as it changed";
}

TEST_F(Midnight, begins_the_new_day_with_its_manifest_and_its_marker_log) {
    recordFrom("2026-03-02T22:59:50.0Z");
    runFor(12);
    EXPECT_NEAR(manifest(kNext).startOffsetSec, 1.0, 1e-6);
    EXPECT_EQ(manifest(kNext).startedAtIso8601, "2026-03-02T23:00:01.000Z");
    EXPECT_EQ(manifest(kNext).deviceName, "Studio console");
    EXPECT_EQ(testing::readFile(dayFile("csv", kNext)), "timestamp,event,label,duration\n");
}

TEST_F(Midnight, comes_two_seconds_after_a_start_at_23_59_59) {
    recordFrom("2026-03-02T22:59:59.0Z");
    EXPECT_TRUE(log_.has("Sonavault recorder: midnight rollover armed in 0m 2s"));
    runFor(1.9);
    EXPECT_FALSE(log_.has(kFiring));
    runFor(0.2);
    EXPECT_TRUE(log_.has(kFiring));
    EXPECT_TRUE(exists("mp3", kNext));
}

TEST_F(Midnight, is_not_awaited_when_the_recording_stops_ten_seconds_before) {
    recordFrom("2026-03-02T22:59:40.0Z");
    runFor(10);
    recorder_->toggleRecording();
    EXPECT_EQ(timers_.waiting(), 0U);
    log_.clear();
    timers_.pass(3600);
    EXPECT_THAT(log_.lines(), IsEmpty());
    EXPECT_FALSE(exists("mp3", kNext));
}

TEST_F(Midnight, changes_the_files_every_day) {
    recordFrom("2026-03-02T22:59:58.0Z");
    for (int day = 0; day < 3; ++day) {
        runFor(5);
        timers_.pass(86395);
    }
    EXPECT_EQ(log_.count(kFiring), 3);
    for (const char* date : {"2026-03-03", "2026-03-04", "2026-03-05"})
        EXPECT_TRUE(exists("mp3", date)) << date;
    EXPECT_EQ(timers_.waiting(), 1U);
}

TEST_F(Midnight, takes_the_quality_that_is_chosen_by_then) {
    chooseQuality(SVQualityLevel::crazyGood);
    recordFrom("2026-03-02T22:59:50.0Z");
    chooseQuality(SVQualityLevel::crummy);
    runFor(12);
    EXPECT_EQ(manifest("2026-03-02").bitrateKbps, 96);
    EXPECT_EQ(manifest(kNext).bitrateKbps, 8);
}

TEST_F(Midnight, keeps_the_link_and_its_resampler) {
    recordLinkFrom("2026-03-02T22:59:50.0Z");
    runFor(13);
    EXPECT_EQ(linkLife_.starts, 1);
    EXPECT_EQ(linkLife_.stops, 0);
    EXPECT_EQ(manifest(kNext).deviceName, "Cadenzo TCP @ 22050Hz/1ch");
    EXPECT_NEAR(static_cast<double>(framesWritten()), 2.1 * 22050, kTolerance);
    EXPECT_TRUE(recorder_->isRecording());
}

TEST_F(Midnight, continues_a_new_day_that_has_a_file_already) {
    recordFrom("2026-03-03T08:00:00.0Z");
    runFor(5);
    recorder_->toggleRecording();
    const auto before = testing::readFile(dayFile("mp3", kNext));
    const auto json = testing::readFile(dayFile("json", kNext));

    chooseQuality(SVQualityLevel::crummy);
    recordFrom("2026-03-02T22:59:58.0Z");
    runFor(5);
    EXPECT_TRUE(log_.has("Sonavault recorder: quality from manifest — 22050 Hz, 24 kbps"));
    EXPECT_EQ(log_.containing("anchor pinned to manifest start").size(), 1U);
    recorder_->toggleRecording();
    const auto later = testing::readFile(dayFile("mp3", kNext));
    EXPECT_EQ(later.substr(0, before.size()), before);
    EXPECT_GT(later.size(), before.size());
    EXPECT_EQ(testing::readFile(dayFile("json", kNext)), json);
}

// Lost links

TEST_F(Midnight, finds_nothing_to_change_when_the_link_was_lost_before) {
    recordLinkFrom("2026-03-02T22:59:50.0Z");
    runFor(10);
    link_->onDisconnect();  // posted, and heard before the timer
    mainQueue_.runAll();
    timers_.pass(10);
    EXPECT_FALSE(exists("mp3", kNext));
    EXPECT_TRUE(recorder_->isAutoResumeArmed());
    handshake();
    EXPECT_TRUE(exists("mp3", kNext)) << "the resumed recording belongs to the new day";
    EXPECT_FALSE(log_.has(kFiring));
}

TEST_F(Midnight, changes_the_files_when_the_loss_of_the_link_is_heard_only_after_it) {
    recordLinkFrom("2026-03-02T22:59:50.0Z");
    runFor(10);
    link_->onDisconnect();  // posted, and not yet heard
    timers_.pass(2);
    mainQueue_.runAll();
    EXPECT_TRUE(log_.has(kFiring));
    EXPECT_FALSE(recorder_->isRecording());
    EXPECT_TRUE(recorder_->isAutoResumeArmed());
}

// Clocks that were set, machines that slept

TEST_F(Midnight, is_made_up_for_at_once_by_a_machine_that_slept_over_it) {
    recordFrom("2026-03-02T22:00:00.0Z");
    runFor(5);
    clock_.set(at("2026-03-03T06:30:00.0Z"));
    timers_.pass(1);
    EXPECT_EQ(recorder_->lastRecordingURL(), dayFile("mp3", kNext));
    EXPECT_NEAR(manifest(kNext).startOffsetSec, 7.5 * 3600, 1.01);
    runFor(5);
    EXPECT_NEAR(drift(kNext), 0, kTolerance);
    recorder_->toggleRecording();
    EXPECT_NEAR(secondsIn("2026-03-02"), 5, 0.2) << "the night is in neither file";
}

TEST_F(Midnight, opens_the_day_of_a_clock_that_was_set_forward_by_days) {
    recordFrom("2026-03-02T12:00:00.0Z");
    runFor(5);
    clock_.set(at("2026-03-07T12:00:00.0Z"));
    timers_.pass(1);
    runFor(5);
    EXPECT_EQ(recorder_->lastRecordingURL(), dayFile("mp3", "2026-03-07"));
    EXPECT_NEAR(drift("2026-03-07"), 0, kTolerance);
    EXPECT_FALSE(exists("mp3", kNext));
}

TEST_F(Midnight, goes_back_to_the_old_days_file_with_a_clock_that_was_set_back_over_it) {
    recordFrom("2026-03-02T22:59:50.0Z");
    runFor(20);
    ASSERT_EQ(recorder_->lastRecordingURL(), dayFile("mp3", kNext));
    const auto oldDay = testing::readFile(dayFile("mp3"));
    const auto newDay = testing::readFile(dayFile("mp3", kNext));

    clock_.set(at("2026-03-02T22:59:00.0Z"));
    runFor(2);
    EXPECT_EQ(recorder_->lastRecordingURL(), dayFile("mp3"));
    EXPECT_TRUE(recorder_->isRecording());
    runFor(70);
    EXPECT_EQ(recorder_->lastRecordingURL(), dayFile("mp3", kNext));
    EXPECT_EQ(log_.count(kFiring), 3);
    recorder_->toggleRecording();
    EXPECT_EQ(testing::readFile(dayFile("mp3")).substr(0, oldDay.size()), oldDay);
    EXPECT_EQ(testing::readFile(dayFile("mp3", kNext)).substr(0, newDay.size()), newDay);
    EXPECT_NEAR(manifest(kNext).startOffsetSec, 1.0, 1e-6) << "still the day's first start";
    EXPECT_NEAR(manifest("2026-03-02").startOffsetSec, 86390, 1e-6);
}

TEST_F(Midnight, stays_in_the_file_when_the_clock_is_set_within_the_day) {
    recordFrom("2026-03-02T12:00:00.0Z");
    runFor(5);
    clock_.set(at("2026-03-02T08:00:00.0Z"));
    runFor(5);
    clock_.set(at("2026-03-02T20:00:00.0Z"));
    runFor(5);
    EXPECT_FALSE(log_.has(kFiring));
    EXPECT_EQ(recorder_->lastRecordingURL(), dayFile("mp3"));
}

TEST_F(Midnight, comes_at_the_end_of_days_of_23_and_25_hours) {
    recordFrom("2026-03-28T23:30:00.0Z");
    EXPECT_TRUE(log_.has("Sonavault recorder: midnight rollover armed in 1350m 1s"));
    timers_.pass(22.5 * 3600);
    EXPECT_FALSE(exists("mp3", "2026-03-30"));
    timers_.pass(1);
    EXPECT_TRUE(exists("mp3", "2026-03-30"));
    EXPECT_NEAR(manifest("2026-03-30").startOffsetSec, 1.0, 1e-6);
    recorder_->toggleRecording();

    recordFrom("2026-10-24T22:30:00.0Z");
    EXPECT_TRUE(log_.has("Sonavault recorder: midnight rollover armed in 1470m 1s"));
    timers_.pass(24.5 * 3600);
    EXPECT_FALSE(exists("mp3", "2026-10-26"));
    timers_.pass(1);
    EXPECT_TRUE(exists("mp3", "2026-10-26"));
}

// Failures

TEST_F(Midnight, ends_the_recording_when_there_is_no_folder_for_the_new_day) {
    recordFrom("2026-03-02T22:59:50.0Z");
    runFor(10);
    std::filesystem::rename(stationPath() / "Logs", stationPath() / "Kept");
    testing::writeFile(stationPath() / "Logs", "in the way");
    log_.clear();
    const auto status = host_->status();
    runFor(2);
    EXPECT_THAT(log_.containing("Sonavault recorder: "),
                ElementsAre(kFiring, "Sonavault recorder: stopped → " + dayFile("mp3").string(),
                            ::testing::StartsWith("Sonavault recorder: mkdir failed at "),
                            "Sonavault recorder: rollover failed — pipeline not ready",
                            "Sonavault recorder: midnight rollover armed in 1440m 0s"));
    EXPECT_FALSE(recorder_->isRecording());
    EXPECT_FALSE(host_->isRecording);
    EXPECT_FALSE(recorder_->isAutoResumeArmed());
    EXPECT_TRUE(host_->alerts.empty());
    EXPECT_EQ(host_->status(), status);
    EXPECT_EQ(recorder_->currentRecordingDurationSec(), 0);
}

TEST_F(Midnight, ends_the_recording_when_the_new_file_cannot_be_opened) {
    recordFrom("2026-03-02T22:59:50.0Z");
    std::filesystem::create_directories(dayFile("mp3", kNext));
    runFor(12);
    EXPECT_TRUE(log_.has("Sonavault recorder: rollover failed to open new MP3"));
    EXPECT_FALSE(recorder_->isRecording());
    EXPECT_FALSE(host_->isRecording);
    EXPECT_TRUE(host_->alerts.empty());
    EXPECT_NEAR(secondsIn("2026-03-02"), 11, 0.2) << "the old day is whole";
}

TEST_F(Midnight, leaves_the_line_input_running_when_it_fails_and_starts_again_as_usual) {
    recordFrom("2026-03-02T22:59:50.0Z");
    std::filesystem::create_directories(dayFile("mp3", kNext));
    runFor(12);
    EXPECT_TRUE(input_.isRunning() && input_.hasTap());
    send(4096, 0.05F);
    EXPECT_NEAR(host_->inputDb, -29.03, 0.5);
    EXPECT_EQ(framesWritten(), 0);

    std::filesystem::remove(dayFile("mp3", kNext));
    EXPECT_TRUE(recorder_->toggleRecording());
    EXPECT_TRUE(input_.isRunning() && input_.hasTap());
    runFor(3);
    EXPECT_NEAR(static_cast<double>(framesWritten()), 3 * 22050, kTolerance);
}

TEST_F(Midnight, only_says_so_at_the_next_one_when_it_failed_and_nobody_started_again) {
    recordFrom("2026-03-02T22:59:50.0Z");
    std::filesystem::create_directories(dayFile("mp3", kNext));
    timers_.pass(12);
    ASSERT_FALSE(recorder_->isRecording());
    log_.clear();
    timers_.pass(86400);
    EXPECT_THAT(log_.lines(), ElementsAre(kFiring));
    EXPECT_EQ(timers_.waiting(), 0U);
    EXPECT_FALSE(exists("mp3", "2026-03-04"));
}

// The buffers meanwhile

TEST_F(Midnight, meters_and_drops_what_comes_between_the_two_files_and_fills_it_with_silence) {
    recordFrom("2026-03-02T22:59:50.0Z");
    runFor(10);
    send(2205, 0.5F);
    bool sent = false;
    log_.onLine = [&](const std::string& line) {
        if (sent || line.find("quality from") == std::string::npos) return;
        sent = true;
        clock_.advance(0.3);
        send(6615, 0.05F);
    };
    timers_.pass(1);
    ASSERT_TRUE(sent);
    EXPECT_NEAR(host_->inputDb, -29.03, 0.5) << "metered";
    EXPECT_EQ(framesWritten(), 0) << "dropped";
    log_.onLine = nullptr;
    runFor(0.2);
    EXPECT_NEAR(static_cast<double>(framesWritten()), 0.5 * 22050, kTolerance);
    EXPECT_EQ(log_.containing("wall-clock pad").size(), 1U);
}

/// What the log says was put in for the clock. Units: frames
double paddedFrames(const testing::RecordedLog& log) {
    constexpr std::string_view kLabel = "wall-clock pad — ";
    double sum = 0;
    for (const auto& line : log.containing(std::string(kLabel)))
        sum += std::stod(line.substr(line.find(kLabel) + kLabel.size()));
    return sum;
}

TEST_F(Midnight, loses_no_buffer_of_a_thread_of_its_own_but_those_that_come_between_two_files) {
    constexpr int kDays = 20;
    constexpr int kFrames = 441;
    constexpr double kSecondsADay = 2;
    // What closing adds to a file: the encoder's own delay and the padding of its last frame.
    constexpr double kLeastClosing = 1152.0 / 16000 * 22050;
    constexpr double kMostClosing = 1727.0 / 16000 * 22050;
    recordFrom("2026-03-02T12:00:00.0Z");
    std::atomic<bool> ended{false};
    std::atomic<int> changes{0};  // odd while one is under way
    double sent = 0;
    double sentBesideChanges = 0;
    std::thread source([&] {
        const std::vector<float> samples(kFrames, 0.25F);
        const float* plane = samples.data();
        while (!ended) {
            const int before = changes;
            recorder_->handleSourceBuffer({input_.format, kFrames, &plane});
            sent += kFrames;
            if (before % 2 == 0 && changes == before) sentBesideChanges += kFrames;
            std::this_thread::yield();
        }
    });
    const auto dayHasSome = [&] {
        return recorder_->currentRecordingDurationSec() >= kSecondsADay;
    };
    int rolled = testing::eventually(dayHasSome);
    for (int day = 0; day < kDays; ++day) {
        ++changes;
        clock_.advance(86400);
        timers_.pass(1);
        ++changes;
        rolled += testing::eventually(dayHasSome);
        mainQueue_.runAll();
    }
    ended = true;
    source.join();
    recorder_->toggleRecording();
    EXPECT_EQ(rolled, kDays + 1);
    EXPECT_EQ(log_.count(kFiring), kDays);
    EXPECT_EQ(log_.containing("stopped → ").size(), kDays + 1U);
    double found = 0;
    for (int day = 0; day <= kDays; ++day) {
        const auto date =
            isoDateString(at("2026-03-02T12:00:00.0Z") + std::chrono::hours(24) * day);
        EXPECT_GE(secondsIn(date), kSecondsADay) << date;
        EXPECT_TRUE(exists("json", date)) << date;
        found += secondsIn(date) * 22050;
    }
    const double put = paddedFrames(log_);
    EXPECT_GE(found - (kDays + 1) * kLeastClosing, sentBesideChanges + put);
    EXPECT_LE(found - (kDays + 1) * kMostClosing, sent + put);
    EXPECT_GT(sentBesideChanges, kSecondsADay * 22050) << "too little was surely to be kept";
}

}  // namespace
}  // namespace sonavault
