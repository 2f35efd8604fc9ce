#include "recorder/MidnightTimer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/ManualTimers.h"
#include "support/Moments.h"
#include "support/RecordedLog.h"
#include "support/ScopedTimeZone.h"

namespace sonavault::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(IsDayOver, holds_from_one_second_after_midnight_on) {
    const ScopedTimeZone zone("Europe/Berlin");
    EXPECT_FALSE(isDayOver("2026-03-02", at("2026-03-02T13:00:00.0Z")));
    EXPECT_FALSE(isDayOver("2026-03-02", at("2026-03-02T22:59:59.999Z")));
    EXPECT_FALSE(isDayOver("2026-03-02", at("2026-03-02T23:00:00.0Z")));
    EXPECT_FALSE(isDayOver("2026-03-02", at("2026-03-02T23:00:00.999999999Z")));
    EXPECT_TRUE(isDayOver("2026-03-02", at("2026-03-02T23:00:01.0Z")));
    EXPECT_TRUE(isDayOver("2026-03-02", at("2026-07-02T12:00:00.0Z")));
}

TEST(IsDayOver, holds_at_once_before_the_day) {
    const ScopedTimeZone zone("Europe/Berlin");
    EXPECT_FALSE(isDayOver("2026-03-02", at("2026-03-01T23:00:00.0Z")));
    EXPECT_TRUE(isDayOver("2026-03-02", at("2026-03-01T22:59:59.999Z")));
}

class MidnightTimerTest : public ::testing::Test {
  protected:
    void startAt(const std::string& utc) {
        clock_.set(at(utc));
        timer_.arm(clock_.now());
    }

    ManualClock clock_{WallTime{}};
    ManualTimers timers_{clock_};
    RecordedLog log_;
    std::vector<std::string> wentOff_;
    const ScopedTimeZone zone_{"Europe/Berlin"};
    MidnightTimer timer_{clock_, log_, timers_.make(),
                         [this] { wentOff_.push_back(iso8601WithMilliseconds(clock_.now())); }};
};

TEST_F(MidnightTimerTest, goes_off_once_one_second_after_midnight_to_the_millisecond) {
    startAt("2026-03-02T13:05:09.123Z");
    EXPECT_THAT(log_.lines(),
                ElementsAre("Sonavault recorder: midnight rollover armed in 594m 51s"));
    timers_.pass(86400);
    EXPECT_THAT(wentOff_, ElementsAre("2026-03-02T23:00:01.000Z"));
    EXPECT_EQ(timers_.waiting(), 0U);
}

TEST_F(MidnightTimerTest, never_goes_off_before_its_moment_however_finely_it_is_armed) {
    startAt("2026-03-02T22:59:59.9996003Z");
    timers_.pass(5);
    EXPECT_THAT(wentOff_, ElementsAre("2026-03-02T23:00:01.000Z"));
}

TEST_F(MidnightTimerTest, counts_the_hours_of_the_days_on_which_the_clocks_change) {
    startAt("2026-03-28T23:30:00.0Z");
    startAt("2026-10-24T22:30:00.0Z");
    EXPECT_THAT(log_.lines(),
                ElementsAre("Sonavault recorder: midnight rollover armed in 1350m 1s",
                            "Sonavault recorder: midnight rollover armed in 1470m 1s"));
    timers_.pass(86400 + 3600);
    EXPECT_THAT(wentOff_, ElementsAre("2026-10-25T23:00:01.000Z"));
    startAt("2026-03-28T23:30:00.0Z");
    timers_.pass(86400);
    EXPECT_EQ(wentOff_.back(), "2026-03-29T22:00:01.000Z");
}

TEST_F(MidnightTimerTest, waits_for_the_end_of_the_day_it_was_given_although_that_has_passed) {
    clock_.set(at("2026-03-02T23:00:00.2Z"));
    timer_.arm(at("2026-03-02T22:59:59.9Z"));
    EXPECT_THAT(log_.lines(), ElementsAre("Sonavault recorder: midnight rollover armed in 0m 0s"));
    timers_.pass(5);
    EXPECT_THAT(wentOff_, ElementsAre("2026-03-02T23:00:01.000Z"));
}

TEST_F(MidnightTimerTest, goes_off_within_a_second_of_waking_when_the_machine_slept_over_midnight) {
    startAt("2026-03-02T22:00:00.0Z");
    timers_.pass(60);
    clock_.set(at("2026-03-03T06:00:00.0Z"));
    timers_.pass(1);
    ASSERT_EQ(wentOff_.size(), 1U);
    EXPECT_LE(at(wentOff_[0]), at("2026-03-03T06:00:01.0Z"));
}

TEST_F(MidnightTimerTest, goes_off_at_the_true_midnight_when_the_machine_slept_before_it) {
    startAt("2026-03-02T13:00:00.0Z");
    timers_.pass(60);
    clock_.set(at("2026-03-02T22:59:58.5Z"));
    timers_.pass(60);
    EXPECT_THAT(wentOff_, ElementsAre("2026-03-02T23:00:01.000Z"));
}

TEST_F(MidnightTimerTest, goes_off_when_the_clock_is_set_forward_by_days) {
    startAt("2026-03-02T13:00:00.0Z");
    clock_.set(at("2026-03-07T13:00:00.0Z"));
    timers_.pass(1);
    EXPECT_EQ(wentOff_.size(), 1U);
}

TEST_F(MidnightTimerTest, goes_off_when_the_clock_is_set_back_before_the_day) {
    startAt("2026-03-02T13:00:00.0Z");
    clock_.set(at("2026-03-01T22:59:00.0Z"));
    timers_.pass(1);
    EXPECT_EQ(wentOff_.size(), 1U);
}

TEST_F(MidnightTimerTest, goes_on_waiting_when_the_clock_is_set_within_the_day) {
    startAt("2026-03-02T13:00:00.0Z");
    clock_.set(at("2026-03-01T23:00:00.0Z"));
    timers_.pass(10);
    clock_.set(at("2026-03-02T22:59:00.0Z"));
    timers_.pass(10);
    EXPECT_THAT(wentOff_, IsEmpty());
    timers_.pass(60);
    EXPECT_THAT(wentOff_, ElementsAre("2026-03-02T23:00:01.000Z"));
}

TEST_F(MidnightTimerTest, follows_the_zone_when_that_is_changed) {
    startAt("2026-03-02T13:00:00.0Z");
    {
        const ScopedTimeZone east("Asia/Tokyo");  // 2026-03-02 22:00 there
        timers_.pass(3600);
        EXPECT_THAT(wentOff_, IsEmpty());
        timers_.pass(3600 + 5);
    }
    ASSERT_EQ(wentOff_.size(), 1U);
    EXPECT_LE(at(wentOff_[0]), at("2026-03-02T15:00:02.0Z"));
}

TEST_F(MidnightTimerTest, waits_on_without_haste_when_the_zone_makes_the_day_longer) {
    startAt("2026-03-02T22:00:00.0Z");
    const ScopedTimeZone west("America/New_York");
    timers_.pass(7 * 3600);
    EXPECT_THAT(wentOff_, IsEmpty());
    timers_.pass(5);
    ASSERT_EQ(wentOff_.size(), 1U);
    EXPECT_LE(at(wentOff_[0]), at("2026-03-03T05:00:02.0Z"));
}

TEST_F(MidnightTimerTest, goes_off_no_more_once_cancelled) {
    startAt("2026-03-02T22:59:50.0Z");
    timer_.cancel();
    EXPECT_EQ(timers_.waiting(), 0U);
    timers_.pass(60);
    EXPECT_THAT(wentOff_, IsEmpty());
}

TEST_F(MidnightTimerTest, waits_for_one_end_only_when_armed_again) {
    startAt("2026-03-02T13:00:00.0Z");
    startAt("2026-03-02T14:00:00.0Z");
    EXPECT_EQ(timers_.waiting(), 1U);
    timers_.pass(86400);
    EXPECT_EQ(wentOff_.size(), 1U);
}

}  // namespace
}  // namespace sonavault::testing
