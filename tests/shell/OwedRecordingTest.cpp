#include "shell/OwedRecording.h"

#include <gtest/gtest.h>

namespace sonavault {
namespace {

constexpr double kLaunch = 1'772'456'709;

class Owed : public ::testing::Test {
  protected:
    bool dueIdle(double seconds) { return owed_.takeTry(false, false, kLaunch + seconds); }
    bool dueRecording(double seconds) { return owed_.takeTry(true, false, kLaunch + seconds); }
    bool dueArmed(double seconds) { return owed_.takeTry(false, true, kLaunch + seconds); }

    OwedRecording owed_;
};

TEST_F(Owed, is_nothing_unless_it_was_asked_for) {
    EXPECT_FALSE(owed_.isWaiting());
    EXPECT_FALSE(dueIdle(100));
}

TEST_F(Owed, is_what_was_asked_for_and_did_not_begin) {
    owed_.askedFor(kLaunch);
    EXPECT_TRUE(owed_.isWaiting());
}

TEST_F(Owed, is_tried_again_every_two_seconds) {
    owed_.askedFor(kLaunch);
    int tries = 0;
    for (int tick = 1; tick <= 20 * 60; ++tick) tries += dueIdle(tick * 0.05);
    EXPECT_GE(tries, 28);
    EXPECT_LE(tries, 30);
}

TEST_F(Owed, is_not_tried_before_more_than_two_seconds_have_passed) {
    owed_.askedFor(kLaunch);
    EXPECT_FALSE(dueIdle(0));
    EXPECT_FALSE(dueIdle(2));
    EXPECT_TRUE(dueIdle(2.01));
    EXPECT_FALSE(dueIdle(2.06));
}

TEST_F(Owed, is_tried_at_once_when_the_clock_was_set_back) {
    owed_.askedFor(kLaunch);
    EXPECT_TRUE(dueIdle(-3600));
    EXPECT_FALSE(dueIdle(-3599));
    EXPECT_TRUE(dueIdle(-3597));
}

TEST_F(Owed, is_paid_for_good_once_a_recording_ran) {
    owed_.askedFor(kLaunch);
    EXPECT_FALSE(dueRecording(5));
    EXPECT_FALSE(owed_.isWaiting());
    EXPECT_FALSE(dueIdle(10));
}

TEST_F(Owed, is_forgotten_once_a_person_decided) {
    owed_.askedFor(kLaunch);
    owed_.personDecided();
    EXPECT_FALSE(owed_.isWaiting());
    EXPECT_FALSE(dueIdle(10));
}

TEST_F(Owed, is_left_to_the_recorder_while_that_waits_for_its_source) {
    owed_.askedFor(kLaunch);
    for (int second = 1; second < 100; ++second) EXPECT_FALSE(dueArmed(second));
    EXPECT_TRUE(owed_.isWaiting());
}

TEST_F(Owed, is_what_the_recorder_waited_for_and_then_could_not_begin) {
    EXPECT_FALSE(dueArmed(1));
    EXPECT_FALSE(dueIdle(2));
    EXPECT_TRUE(dueIdle(3.5));
}

}  // namespace
}  // namespace sonavault
