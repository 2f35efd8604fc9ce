#include "shell/RecordingTransition.h"

#include <gtest/gtest.h>

namespace sonavault {
namespace {

constexpr auto kMonday = "2026-03-02";
constexpr auto kTuesday = "2026-03-03";
constexpr auto kNone = std::nullopt;

TEST(RecordingTransitions, take_what_they_find_first_for_no_change) {
    RecordingTransitions idle;
    EXPECT_EQ(idle.look(false, kMonday), kNone);
    RecordingTransitions recording;
    EXPECT_EQ(recording.look(true, kMonday), kNone);
    EXPECT_EQ(recording.look(true, kMonday), kNone);
    EXPECT_EQ(recording.look(false, kMonday), (RecordingTransition{"stopped", kMonday}));
}

TEST(RecordingTransitions, tell_each_beginning_and_end_once) {
    RecordingTransitions transitions;
    transitions.look(false, kMonday);
    EXPECT_EQ(transitions.look(true, kMonday), (RecordingTransition{"started", kMonday}));
    EXPECT_EQ(transitions.look(true, kMonday), kNone);
    EXPECT_EQ(transitions.look(false, kMonday), (RecordingTransition{"stopped", kMonday}));
    EXPECT_EQ(transitions.look(false, kMonday), kNone);
}

TEST(RecordingTransitions, tell_of_midnight_only_while_recording) {
    RecordingTransitions transitions;
    transitions.look(true, kMonday);
    EXPECT_EQ(transitions.look(true, kTuesday),
              (RecordingTransition{"midnight-rolled-over", kTuesday}));
    EXPECT_EQ(transitions.look(true, kTuesday), kNone);
    RecordingTransitions idle;
    idle.look(false, kMonday);
    EXPECT_EQ(idle.look(false, kTuesday), kNone);
    EXPECT_EQ(idle.look(true, kTuesday), (RecordingTransition{"started", kTuesday}));
}

TEST(RecordingTransitions, name_the_old_day_when_recording_ended_before_the_date_was_rolled) {
    RecordingTransitions transitions;
    transitions.look(false, kMonday);
    transitions.look(true, kMonday);
    EXPECT_EQ(transitions.look(false, kTuesday), (RecordingTransition{"stopped", kMonday}));
}

}  // namespace
}  // namespace sonavault
