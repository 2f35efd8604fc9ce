#include "recorder/SVRecorder.h"

#include "recorder/RecorderFixture.h"
#include "recorder/WallClockSync.h"

namespace sonavault {
namespace {

constexpr auto kNotConnected = "Cadenzo not connected";

class Recorder : public testing::RecorderFixture {};

// The line input

TEST_F(Recorder, names_the_line_input_as_its_source_and_leaves_the_engine_off) {
    useLineInput();
    EXPECT_EQ(host_->status(), "Source: Line Input (engine on demand)");
    EXPECT_TRUE(log_.has("Sonavault recorder: applySourceMode(line_input)"));
    EXPECT_FALSE(input_.isRunning());
    EXPECT_FALSE(input_.hasTap());
}

TEST_F(Recorder, starts_and_stops_on_the_line_input) {
    useLineInput();
    EXPECT_TRUE(recorder_->toggleRecording());
    EXPECT_TRUE(host_->isRecording);
    EXPECT_TRUE(input_.isRunning());
    EXPECT_EQ(input_.tapFrames, 4096);
    EXPECT_EQ(host_->status(), "Recording (line input) → Sonavault_2026-03-02.mp3");
    EXPECT_TRUE(log_.has(
        "Sonavault recorder: toggleRecording() — current isRecording=false, source=line_input"));
    EXPECT_TRUE(log_.has("Sonavault recorder: started (line input) → " + dayFile("mp3").string()));

    runFor(1);
    EXPECT_FALSE(recorder_->toggleRecording());
    EXPECT_FALSE(host_->isRecording);
    EXPECT_FALSE(input_.isRunning());
    EXPECT_FALSE(input_.hasTap());
    EXPECT_TRUE(log_.has("Sonavault recorder: stopped → " + dayFile("mp3").string()));
    EXPECT_EQ(host_->inputDb, -160.0F);
    EXPECT_EQ(host_->status(), "Recording (line input) → Sonavault_2026-03-02.mp3")
        << "a stop leaves the text as it stood";
    EXPECT_EQ(recorder_->lastRecordingURL(), dayFile("mp3"));
    EXPECT_EQ(recorder_->currentRecordingDurationSec(), 0);
}

TEST_F(Recorder, does_not_start_when_the_engine_does_not) {
    input_.startError = "no input device";
    useLineInput();
    EXPECT_FALSE(recorder_->toggleRecording());
    EXPECT_TRUE(log_.has("Sonavault recorder: engine.start failed: no input device"));
    EXPECT_FALSE(host_->isRecording);
    EXPECT_FALSE(input_.hasTap());
    EXPECT_EQ(host_->status(), "Source: Line Input (engine on demand)");
    EXPECT_TRUE(host_->alerts.empty());
    EXPECT_TRUE(log_.containing("stopped →").empty());

    input_.startError.clear();
    EXPECT_TRUE(recorder_->toggleRecording());
    runFor(1);
    EXPECT_GT(std::filesystem::file_size(dayFile("mp3")), 1000U);
}

TEST_F(Recorder, does_not_start_on_a_format_that_cannot_be_converted) {
    input_.format = {300, 1, true};
    useLineInput();
    EXPECT_FALSE(recorder_->toggleRecording());
    EXPECT_EQ(log_.containing("Sonavault recorder: AVAudioConverter init failed for 300 Hz").size(),
              1U);
    EXPECT_FALSE(std::filesystem::exists(dayFile("mp3")));
}

TEST_F(Recorder, does_not_start_without_an_output_folder) {
    testing::writeFile(stationPath() / "Logs", "in the way");
    useLineInput();
    EXPECT_FALSE(recorder_->toggleRecording());
    EXPECT_EQ(log_.containing("Sonavault recorder: mkdir failed at ").size(), 1U);
    EXPECT_TRUE(log_.has("Sonavault recorder: could not resolve output folder"));
    EXPECT_EQ(host_->status(), "Source: Line Input (engine on demand)");
}

TEST_F(Recorder, forgets_the_days_waveform_at_every_start) {
    useLineInput();
    testing::writeFile(dayFile("peaks"), "stale");
    recorder_->toggleRecording();
    EXPECT_FALSE(std::filesystem::exists(dayFile("peaks")));
    recorder_->toggleRecording();
    testing::writeFile(dayFile("peaks"), "stale");
    recorder_->toggleRecording();
    EXPECT_FALSE(std::filesystem::exists(dayFile("peaks")));
}

TEST_F(Recorder, forgets_at_a_stop_the_waveform_that_was_made_while_the_file_grew) {
    useLineInput();
    recorder_->toggleRecording();
    runFor(1);
    testing::writeFile(dayFile("peaks"), "of half a day");
    recorder_->toggleRecording();
    EXPECT_FALSE(recorder_->isRecording());
    EXPECT_FALSE(std::filesystem::exists(dayFile("peaks")));
}

TEST_F(Recorder, opens_nothing_again_when_asked_to_resume_what_runs) {
    useLineInput();
    recorder_->requestAutoResume();
    ASSERT_TRUE(recorder_->isRecording());
    const auto opened = log_.containing("quality from").size();
    recorder_->requestAutoResume();
    EXPECT_TRUE(recorder_->isRecording());
    EXPECT_EQ(log_.containing("quality from").size(), opened);
}

TEST_F(Recorder, goes_on_without_anybody_to_tell) {
    host_.reset();
    useLineInput();
    recorder_->toggleRecording();
    runFor(1);
    EXPECT_EQ(framesWritten(), 22050);
    recorder_->toggleRecording();
    useLink();
    recorder_->toggleRecording();
    EXPECT_FALSE(recorder_->isRecording());
}

// Change of source

TEST_F(Recorder, stops_first_when_the_source_changes_and_does_not_begin_again) {
    useLineInput();
    recorder_->toggleRecording();
    runFor(0.5);
    useLink();
    EXPECT_FALSE(recorder_->isRecording());
    EXPECT_FALSE(host_->isRecording);
    EXPECT_FALSE(input_.isRunning());
    EXPECT_EQ(host_->status(), "Listening for Cadenzo (audio :9171, markers :9172)…");
    EXPECT_TRUE(linkLife_.listens());
    EXPECT_TRUE(log_.has("Sonavault recorder: stopped → " + dayFile("mp3").string()));
}

TEST_F(Recorder, toggles_with_another_source_by_changing_to_it_first) {
    useLink();
    EXPECT_TRUE(recorder_->toggle(SVRecorderSourceMode::lineInput));
    EXPECT_EQ(recorder_->sourceMode(), SVRecorderSourceMode::lineInput);
    EXPECT_FALSE(recorder_->toggle(SVRecorderSourceMode::lineInput));
    EXPECT_TRUE(recorder_->toggle(std::nullopt));
    EXPECT_EQ(log_.containing("applySourceMode").size(), 2U);
}

TEST_F(Recorder, does_not_heed_what_an_old_link_still_had_to_say) {
    useLink();
    link_->onHandshake({44100, 2, true});  // posted, and not yet heard
    useLineInput();
    mainQueue_.runAll();
    EXPECT_FALSE(recorder_->isCadenzoConnected());
    EXPECT_EQ(host_->status(), "Source: Line Input (engine on demand)");
}

TEST_F(Recorder, keeps_waiting_over_a_change_of_source) {
    useLink();
    recorder_->requestAutoResume();
    useLink();
    EXPECT_TRUE(recorder_->isAutoResumeArmed());
}

// The link

TEST_F(Recorder, says_that_the_link_is_there_and_waits_for_the_key) {
    useLink();
    handshake({44100.9, 2, true});
    EXPECT_TRUE(recorder_->isCadenzoConnected());
    EXPECT_FALSE(recorder_->isRecording());
    EXPECT_EQ(host_->status(), "Cadenzo connected (44100 Hz / 2 ch) — press ⌘R to record");
}

TEST_F(Recorder, records_from_the_link) {
    useLink();
    handshake();
    EXPECT_TRUE(recorder_->toggleRecording());
    EXPECT_EQ(host_->status(), "Recording (Cadenzo TCP) → Sonavault_2026-03-02.mp3");
    EXPECT_TRUE(log_.has("Sonavault recorder: started (Cadenzo TCP) → " + dayFile("mp3").string()));
    runFor(2);
    EXPECT_EQ(framesWritten(), 44100);
}

TEST_F(Recorder, alerts_when_started_without_the_link) {
    useLink();
    EXPECT_FALSE(recorder_->toggleRecording());
    ASSERT_EQ(host_->alerts.size(), 1U);
    EXPECT_EQ(host_->alerts[0].first, kNotConnected);
    EXPECT_EQ(host_->alerts[0].second,
              "Recording can't start until Cadenzo's audio handshake completes. Make sure Cadenzo "
              "is running with the "
              "Sonavault toggle on.");
    EXPECT_EQ(host_->status(), "Listening for Cadenzo (audio :9171, markers :9172)…");
}

TEST_F(Recorder, shows_the_level_of_the_link_while_not_recording) {
    useLink();
    handshake();
    send(4096, 0.5F);
    EXPECT_NEAR(host_->inputDb, -9.03, 0.3);
    EXPECT_EQ(framesWritten(), 0);
    EXPECT_FALSE(std::filesystem::exists(dayFile("mp3")));
}

TEST_F(Recorder, leaves_the_level_running_when_recording_from_the_link_stops) {
    useLink();
    handshake();
    recorder_->toggleRecording();
    send(4096, 0.5F);
    recorder_->toggleRecording();
    EXPECT_GT(host_->inputDb, -20.0F);
    send(4096, 0.05F);
    EXPECT_NEAR(host_->inputDb, -29.03, 0.5);
    EXPECT_EQ(framesWritten(), 0);
}

TEST_F(Recorder, refuses_a_handshake_that_cannot_be_converted_and_stays_armed) {
    useLink();
    recorder_->requestAutoResume();
    handshake({4000, 1, true});
    EXPECT_FALSE(recorder_->isCadenzoConnected());
    EXPECT_FALSE(recorder_->isRecording());
    EXPECT_TRUE(recorder_->isAutoResumeArmed());
    EXPECT_EQ(
        log_.containing("Sonavault recorder: handshake reject — could not build resampler from ")
            .size(),
        1U);

    handshake();
    EXPECT_TRUE(recorder_->isRecording());
}

TEST_F(Recorder, keeps_the_connected_flag_as_it_was_at_a_handshake_that_cannot_be_converted) {
    useLink();
    handshake();
    handshake({4000, 1, true});
    EXPECT_TRUE(recorder_->isCadenzoConnected());
}

TEST_F(Recorder, says_so_when_a_handshake_lands_while_recording) {
    useLink();
    handshake();
    recorder_->toggleRecording();
    handshake();
    EXPECT_EQ(host_->status(), "Recording (Cadenzo TCP) — reconnected");
    EXPECT_TRUE(recorder_->isRecording());
}

TEST_F(Recorder, tells_of_a_link_lost_while_idle) {
    useLink();
    handshake();
    send(4096);
    dropLink();
    EXPECT_EQ(host_->status(), "Cadenzo disconnected — listening for reconnect…");
    EXPECT_EQ(host_->inputDb, -160.0F);
    EXPECT_FALSE(recorder_->isCadenzoConnected());
    EXPECT_FALSE(recorder_->isAutoResumeArmed());
}

TEST_F(Recorder, closes_the_file_when_the_link_is_lost_and_resumes_the_same_file_by_itself) {
    useLink();
    handshake();
    recorder_->toggleRecording();
    runFor(5);
    dropLink();
    EXPECT_TRUE(
        log_.has("Sonavault recorder: Cadenzo dropped while recording — closing file, will resume "
                 "on reconnect"));
    EXPECT_EQ(host_->status(),
              "Cadenzo dropped — recording will resume automatically on reconnect.");
    EXPECT_FALSE(recorder_->isRecording());
    EXPECT_TRUE(recorder_->isAutoResumeArmed());
    EXPECT_EQ(recorder_->currentRecordingDurationSec(), 0);
    const auto sizeAtDrop = std::filesystem::file_size(dayFile("mp3"));
    const auto inFile = existingFramesAt(dayFile("mp3"), 22050);

    clock_.advance(3);
    handshake();
    EXPECT_TRUE(recorder_->isRecording());
    EXPECT_FALSE(recorder_->isAutoResumeArmed());
    EXPECT_TRUE(log_.has("Sonavault recorder: auto-resume firing (handshake just landed)"));
    EXPECT_EQ(framesWritten(), inFile) << "rebuilt from the file, not carried in memory";
    runFor(4);
    EXPECT_GT(std::filesystem::file_size(dayFile("mp3")), sizeAtDrop);
    EXPECT_NEAR(static_cast<double>(framesWritten()), 12 * 22050, kPadToleranceFrames + 1);
}

// Waiting for the source

TEST_F(Recorder, resumes_at_once_on_the_line_input) {
    useLineInput();
    recorder_->requestAutoResume();
    EXPECT_TRUE(recorder_->isRecording());
    EXPECT_FALSE(recorder_->isAutoResumeArmed());
    EXPECT_TRUE(log_.has("Sonavault recorder: auto-resume armed (source=line_input)"));
}

TEST_F(Recorder, does_not_stay_armed_when_the_line_input_fails) {
    input_.startError = "no input device";
    useLineInput();
    recorder_->requestAutoResume();
    EXPECT_FALSE(recorder_->isRecording());
    EXPECT_FALSE(recorder_->isAutoResumeArmed());
}

TEST_F(Recorder, resumes_at_once_on_a_link_that_is_there) {
    useLink();
    handshake();
    recorder_->requestAutoResume();
    EXPECT_TRUE(recorder_->isRecording());
    EXPECT_FALSE(recorder_->isAutoResumeArmed());
}

TEST_F(Recorder, waits_for_a_link_that_is_not_there) {
    useLink();
    recorder_->requestAutoResume();
    EXPECT_EQ(host_->status(), "Auto-resume armed — waiting for Cadenzo…");
    EXPECT_TRUE(recorder_->isAutoResumeArmed());
    EXPECT_TRUE(host_->alerts.empty());
    handshake();
    EXPECT_TRUE(recorder_->isRecording());
}

TEST_F(Recorder, ends_its_waiting_at_a_press_of_the_key) {
    useLink();
    recorder_->requestAutoResume();
    recorder_->toggleRecording();
    ASSERT_EQ(host_->alerts.size(), 1U);
    EXPECT_EQ(host_->alerts[0].first, kNotConnected);
    EXPECT_FALSE(recorder_->isAutoResumeArmed());
    handshake();
    EXPECT_FALSE(recorder_->isRecording());
    EXPECT_EQ(host_->status(), "Cadenzo connected (22050 Hz / 1 ch) — press ⌘R to record");
}

TEST_F(Recorder, does_nothing_when_asked_to_resume_while_recording) {
    useLink();
    handshake();
    recorder_->toggleRecording();
    recorder_->requestAutoResume();
    EXPECT_FALSE(recorder_->isAutoResumeArmed());
    EXPECT_TRUE(log_.containing("auto-resume armed").empty());
}

}  // namespace
}  // namespace sonavault
