#include "shell/RecordingStatus.h"

#include <gtest/gtest.h>

#include <limits>

namespace sonavault {
namespace {

constexpr auto kLine = SVRecorderSourceMode::lineInput;
constexpr auto kLink = SVRecorderSourceMode::cadenzoTCP;
const QColor kGrey(89, 89, 89);

std::string text(const QString& shown) {
    return shown.toStdString();
}

TEST(ConnectionDot, is_grey_while_there_is_no_recorder) {
    EXPECT_EQ(connectionDotColour({}), kGrey);
}

TEST(ConnectionDot, is_grey_on_the_line_input_whatever_the_link_says) {
    EXPECT_EQ(connectionDotColour({.source = kLine}), kGrey);
    EXPECT_EQ(connectionDotColour({.source = kLine, .isCadenzoConnected = true}), kGrey);
}

TEST(ConnectionDot, is_green_on_a_connected_link_and_red_on_any_other) {
    EXPECT_EQ(connectionDotColour({.source = kLink, .isCadenzoConnected = true}),
              QColor(40, 205, 65));
    EXPECT_EQ(connectionDotColour({.source = kLink}), QColor(255, 59, 48));
}

TEST(RecordingStateText, says_whether_the_air_is_kept) {
    EXPECT_EQ(text(recordingStateText({})), "Not recording");
    EXPECT_EQ(text(recordingStateText({.source = kLine, .isRecording = true})), "Recording");
}

TEST(RecordingStateText, names_what_is_being_waited_for) {
    EXPECT_EQ(text(recordingStateText({.source = kLine, .isWaiting = true})),
              "Waiting for the line input");
    EXPECT_EQ(text(recordingStateText({.source = kLink, .isWaiting = true})),
              "Waiting for Cadenzo");
}

TEST(RecordingStateText, never_says_waiting_while_it_records) {
    EXPECT_EQ(text(recordingStateText({.source = kLine, .isRecording = true, .isWaiting = true})),
              "Recording");
}

TEST(RecordingStateColour, tells_recording_waiting_and_idle_apart) {
    const QColor recording = recordingStateColour({.source = kLine, .isRecording = true});
    const QColor waiting = recordingStateColour({.source = kLine, .isWaiting = true});
    const QColor idle = recordingStateColour({.source = kLine});
    EXPECT_EQ(recording, QColor(255, 59, 48));
    EXPECT_NE(waiting, recording);
    EXPECT_NE(waiting, idle);
    EXPECT_NE(idle, recording);
}

TEST(RecordingDurationText, counts_whole_seconds_up_to_a_full_day) {
    EXPECT_EQ(text(recordingDurationText({})), "00:00:00");
    EXPECT_EQ(text(recordingDurationText({.durationSec = 59.99})), "00:00:59");
    EXPECT_EQ(text(recordingDurationText({.durationSec = 86399})), "23:59:59");
}

TEST(RecordingDurationCaption, does_not_claim_a_file_while_none_is_open) {
    EXPECT_EQ(text(recordingDurationCaption({})), "no file is open");
    EXPECT_EQ(text(recordingDurationCaption({.source = kLine, .isRecording = true})),
              "in today’s file");
}

TEST(SourceText, names_the_source_and_the_state_of_the_link) {
    EXPECT_EQ(text(sourceText({})), "—");
    EXPECT_EQ(text(sourceText({.source = kLine})), "Line input");
    EXPECT_EQ(text(sourceText({.source = kLink})), "Cadenzo TCP, not connected");
    EXPECT_EQ(text(sourceText({.source = kLink, .isCadenzoConnected = true})),
              "Cadenzo TCP, connected");
}

TEST(InputLevelText, rounds_to_whole_decibels) {
    EXPECT_EQ(text(inputLevelText({.inputDb = -23.4F})), "−23 dBFS");
    EXPECT_EQ(text(inputLevelText({.inputDb = -23.6F})), "−24 dBFS");
    EXPECT_EQ(text(inputLevelText({.inputDb = -0.3F})), "0 dBFS");
    EXPECT_EQ(text(inputLevelText({.inputDb = 2})), "2 dBFS");
}

TEST(InputLevelText, says_so_when_nothing_comes_in) {
    EXPECT_EQ(text(inputLevelText({})), "No signal");
    EXPECT_EQ(text(inputLevelText({.inputDb = -160})), "No signal");
    EXPECT_EQ(text(inputLevelText({.inputDb = -std::numeric_limits<float>::infinity()})),
              "No signal");
    EXPECT_EQ(text(inputLevelText({.inputDb = std::numeric_limits<float>::quiet_NaN()})),
              "No signal");
    EXPECT_EQ(text(inputLevelText({.inputDb = -159})), "−159 dBFS");
}

}  // namespace
}  // namespace sonavault
