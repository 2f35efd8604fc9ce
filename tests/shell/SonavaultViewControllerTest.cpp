#include "shell/SonavaultViewController.h"

#include <QTest>
#include <atomic>
#include <thread>

#include "shell/ShellFixture.h"

namespace sonavault::testing {
namespace {

using ControllerTest = ShellFixture;
const QColor kGrey(89, 89, 89);

TEST_F(ControllerTest, makes_no_recorder_and_touches_nothing_at_construction) {
    SonavaultViewController controller(services());
    EXPECT_EQ(controller.recorder(), nullptr);
    EXPECT_EQ(link_, nullptr);
    EXPECT_EQ(input_.starts + input_.questions, 0);
    EXPECT_TRUE(log_.lines().empty());
}

TEST_F(ControllerTest, survives_every_request_before_there_is_a_recorder) {
    SonavaultViewController controller(services());
    controller.tickDisplay();
    controller.toggleRecordingFromMenu();
    controller.setSourceCadenzoTCP();
    EXPECT_EQ(preferences_.text(kSourceModeKey), "cadenzo_tcp");
    EXPECT_EQ(colourOfDot(controller), kGrey);
    controller.openLastRecordingFromMenu();
    ASSERT_EQ(alerts_.shown.size(), 1U);
    EXPECT_EQ(alerts_.shown.front().message, "No recording yet");
}

TEST_F(ControllerTest, tells_the_owner_when_the_source_has_changed) {
    SonavaultViewController controller(services());
    std::vector<SVRecorderSourceMode> told;
    controller.onSourceModeChanged = [&] { told.push_back(controller.sourceMode()); };
    controller.setSourceCadenzoTCP();
    controller.setSourceLineInput();
    EXPECT_EQ(told,
              (std::vector{SVRecorderSourceMode::cadenzoTCP, SVRecorderSourceMode::lineInput}));
}

TEST_F(ControllerTest, gives_the_recorder_its_source_before_it_asks_for_auto_resume) {
    preferences_.setText(kSourceModeKey, "cadenzo_tcp");
    preferences_.setBoolean(kAutoResumeOnLaunchKey, true);
    launch();
    EXPECT_EQ(log_.lines(), (std::vector<std::string>{
                                "Sonavault recorder: applySourceMode(cadenzo_tcp)",
                                "Sonavault recorder: auto-resume armed (source=cadenzo_tcp)"}));
    EXPECT_EQ(statusText(), "Auto-resume armed — waiting for Cadenzo…");
}

TEST_F(ControllerTest, records_from_launch_when_auto_resume_is_on) {
    preferences_.setBoolean(kAutoResumeOnLaunchKey, true);
    launch();
    EXPECT_TRUE(recorder().isRecording());
    EXPECT_EQ(statusText(), "Recording (line input) → Sonavault_2026-03-02.mp3");
}

TEST_F(ControllerTest, records_nothing_at_launch_when_auto_resume_is_off) {
    preferences_.setBoolean(kAutoResumeOnLaunchKey, false);
    launch();
    passSeconds(10);
    EXPECT_FALSE(recorder().isRecording());
    EXPECT_EQ(input_.starts, 0);
    EXPECT_FALSE(std::filesystem::exists(dayFile()));
    EXPECT_EQ(statusText(), "Source: Line Input (engine on demand)");
}

TEST_F(ControllerTest, ticks_by_itself_once_it_is_ready) {
    launch();
    controller().toggleRecordingFromMenu();
    playSeconds(1, 0.5F);
    const auto dayIsListed = [this] {
        return !controller().review().days().dailyRecordings().empty();
    };
    clock_.advance(2.5);
    EXPECT_TRUE(QTest::qWaitFor(dayIsListed, 2000));
}

TEST_F(ControllerTest, shows_what_the_recorder_says) {
    launch();
    controller().setSourceCadenzoTCP();
    EXPECT_EQ(statusText(), "Listening for Cadenzo (audio :9171, markers :9172)…");
    connectCadenzo();
    EXPECT_EQ(statusText(), "Cadenzo connected (44100 Hz / 2 ch) — press ⌘R to record");
}

TEST_F(ControllerTest, follows_the_link_with_the_connection_dot) {
    launch();
    tickOnce();
    EXPECT_EQ(dotColour(), kGrey);
    controller().setSourceCadenzoTCP();
    tickOnce();
    EXPECT_EQ(dotColour(), QColor(255, 59, 48));
    connectCadenzo();
    EXPECT_EQ(dotColour(), QColor(40, 205, 65));
    dropCadenzo();
    EXPECT_EQ(dotColour(), QColor(255, 59, 48));
    controller().setSourceLineInput();
    tickOnce();
    EXPECT_EQ(dotColour(), kGrey);
}

TEST_F(ControllerTest, goes_on_ticking_while_a_source_delivers_on_its_own_thread) {
    launch();
    controller().toggleRecordingFromMenu();
    std::atomic<bool> delivered = false;
    std::thread source([&] {
        playSeconds(5.5, 0.5F);
        delivered = true;
    });
    while (!delivered) tickOnce();
    source.join();
    tickOnce();
    EXPECT_NEAR(recorder().currentRecordingDurationSec(), 5.5, 0.3);
}

TEST_F(ControllerTest, stops_recording_when_the_source_changes) {
    launch();
    controller().toggleRecordingFromMenu();
    controller().setSourceCadenzoTCP();
    EXPECT_FALSE(recorder().isRecording());
    EXPECT_EQ(recorder().sourceMode(), SVRecorderSourceMode::cadenzoTCP);
}

TEST_F(ControllerTest, explains_in_an_alert_why_the_link_can_not_be_recorded) {
    launch();
    controller().setSourceCadenzoTCP();
    controller().toggleRecordingFromMenu();
    ASSERT_EQ(alerts_.shown.size(), 1U);
    EXPECT_EQ(alerts_.shown.front().style, Alert::warning);
    EXPECT_EQ(alerts_.shown.front().message, "Cadenzo not connected");
    EXPECT_FALSE(recorder().isRecording());
}

TEST_F(ControllerTest, has_no_last_recording_right_after_launch_even_when_the_day_has_a_file) {
    writeFile(dayFile(), "what an earlier run recorded");
    launch();
    controller().openLastRecordingFromMenu();
    ASSERT_EQ(alerts_.shown.size(), 1U);
    EXPECT_EQ(alerts_.shown.front().message, "No recording yet");
    EXPECT_EQ(alerts_.shown.front().information, "Press ⌘R to start a recording first.");
    EXPECT_FALSE(controller().review().day().loadedFileURL());
}

TEST_F(ControllerTest, opens_the_last_recording_also_after_it_has_stopped) {
    launch();
    controller().toggleRecordingFromMenu();
    playSeconds(2, 0.5F);
    controller().toggleRecordingFromMenu();
    controller().openLastRecordingFromMenu();
    EXPECT_EQ(controller().review().day().loadedFileURL(), dayFile());
    EXPECT_TRUE(alerts_.shown.empty());
}

TEST_F(ControllerTest, goes_on_waiting_for_the_link_while_another_source_is_chosen) {
    preferences_.setBoolean(kAutoResumeOnLaunchKey, true);
    preferences_.setText(kSourceModeKey, "cadenzo_tcp");
    launch();
    controller().setSourceLineInput();
    passSeconds(60);
    EXPECT_FALSE(isRecording()) << "the line input never ends that waiting";
    controller().setSourceCadenzoTCP();
    connectCadenzo();
    EXPECT_TRUE(isRecording());
}

TEST_F(ControllerTest, tries_again_when_the_day_could_not_be_begun) {
    std::filesystem::create_directories(dayFile());  // what stands there is no file
    preferences_.setBoolean(kAutoResumeOnLaunchKey, true);
    preferences_.setText(kSourceModeKey, "cadenzo_tcp");
    launch();
    connectCadenzo();
    tickOnce();
    EXPECT_FALSE(isRecording());
    std::filesystem::remove(dayFile());
    passSeconds(2.2);
    EXPECT_TRUE(isRecording());
}

/// A computer on which the sound server has not started yet.
class AutoResumeTest : public ControllerTest {
  protected:
    AutoResumeTest() {
        preferences_.setBoolean(kAutoResumeOnLaunchKey, true);
        loseSoundServer();
        launch();
    }

    void loseSoundServer() {
        input_.works = false;
        input_.deviceName.clear();
    }
    void bringSoundServer() {
        input_.works = true;
        input_.deviceName = "Studio console";
    }
};

TEST_F(AutoResumeTest, begins_within_seconds_of_the_sound_servers_start) {
    passSeconds(60);
    EXPECT_FALSE(recorder().isRecording());
    bringSoundServer();
    passSeconds(4.2);
    EXPECT_TRUE(recorder().isRecording());
}

TEST_F(AutoResumeTest, only_asks_for_a_device_while_there_is_none) {
    log_.clear();
    const int startsAtLaunch = input_.starts;
    const int questionsAtLaunch = input_.questions;
    passSeconds(60);
    EXPECT_EQ(input_.starts, startsAtLaunch);
    EXPECT_LE(input_.looks, 31);
    EXPECT_EQ(input_.questions, questionsAtLaunch) << "the tick waits for nothing";
    EXPECT_TRUE(log_.lines().empty());
}

TEST_F(AutoResumeTest, logs_no_more_than_two_lines_a_second_while_the_device_refuses) {
    input_.deviceName = "Studio console";
    log_.clear();
    passSeconds(60);
    EXPECT_GT(input_.starts, 20);
    EXPECT_LE(log_.lines().size(), 120U);
    EXPECT_FALSE(recorder().isRecording());
}

TEST_F(AutoResumeTest, gives_up_when_a_person_pressed_start_or_stop) {
    controller().toggleRecordingFromMenu();
    bringSoundServer();
    passSeconds(30);
    EXPECT_FALSE(recorder().isRecording());
}

TEST_F(AutoResumeTest, gives_up_when_a_person_chose_a_source) {
    controller().setSourceLineInput();
    bringSoundServer();
    passSeconds(30);
    EXPECT_FALSE(recorder().isRecording());
}

TEST_F(AutoResumeTest, goes_on_waiting_when_a_person_chose_against_it_for_the_next_launch) {
    delegate().menuToggleAutoResume();
    passSeconds(10);
    EXPECT_FALSE(isRecording());
    bringSoundServer();
    passSeconds(4.2);
    EXPECT_TRUE(recorder().isRecording());
}

TEST_F(AutoResumeTest, does_not_begin_again_after_a_person_stopped_what_it_began) {
    bringSoundServer();
    passSeconds(4.2);
    ASSERT_TRUE(recorder().isRecording());
    controller().toggleRecordingFromMenu();
    passSeconds(30);
    EXPECT_FALSE(recorder().isRecording());
}

}  // namespace
}  // namespace sonavault::testing
