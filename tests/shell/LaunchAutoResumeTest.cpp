#include "shell/LaunchAutoResume.h"

#include <gtest/gtest.h>

namespace sonavault {
namespace {

constexpr double kLaunch = 1'772'456'709;
constexpr auto kLine = SVRecorderSourceMode::lineInput;
constexpr auto kLink = SVRecorderSourceMode::cadenzoTCP;

LaunchAutoResume waitingSinceLaunch() {
    LaunchAutoResume resume;
    resume.askedAtLaunch(kLine, false, kLaunch);
    return resume;
}

TEST(LaunchAutoResume, waits_for_nothing_unless_it_was_asked) {
    LaunchAutoResume resume;
    EXPECT_FALSE(resume.isWaiting());
    EXPECT_FALSE(resume.isTryDue(false, kLaunch + 100));
}

TEST(LaunchAutoResume, waits_when_the_line_input_did_not_begin) {
    EXPECT_TRUE(waitingSinceLaunch().isWaiting());
}

TEST(LaunchAutoResume, does_not_wait_when_recording_began_at_once) {
    LaunchAutoResume resume;
    resume.askedAtLaunch(kLine, true, kLaunch);
    EXPECT_FALSE(resume.isWaiting());
}

TEST(LaunchAutoResume, leaves_the_waiting_for_the_link_to_the_recorder) {
    LaunchAutoResume resume;
    resume.askedAtLaunch(kLink, false, kLaunch);
    EXPECT_FALSE(resume.isWaiting());
}

TEST(LaunchAutoResume, tries_again_every_three_seconds) {
    auto resume = waitingSinceLaunch();
    int tries = 0;
    for (int tick = 1; tick <= 20 * 60; ++tick)
        tries += resume.isTryDue(false, kLaunch + tick * 0.05);
    EXPECT_GE(tries, 18);
    EXPECT_LE(tries, 20);
}

TEST(LaunchAutoResume, does_not_try_before_more_than_three_seconds_have_passed) {
    auto resume = waitingSinceLaunch();
    EXPECT_FALSE(resume.isTryDue(false, kLaunch));
    EXPECT_FALSE(resume.isTryDue(false, kLaunch + 3));
    EXPECT_TRUE(resume.isTryDue(false, kLaunch + 3.01));
    EXPECT_FALSE(resume.isTryDue(false, kLaunch + 3.06));
}

TEST(LaunchAutoResume, tries_at_once_when_the_clock_was_set_back) {
    auto resume = waitingSinceLaunch();
    EXPECT_TRUE(resume.isTryDue(false, kLaunch - 3600));
    EXPECT_FALSE(resume.isTryDue(false, kLaunch - 3599));
    EXPECT_TRUE(resume.isTryDue(false, kLaunch - 3596));
}

TEST(LaunchAutoResume, is_over_for_good_once_a_recording_ran) {
    auto resume = waitingSinceLaunch();
    EXPECT_FALSE(resume.isTryDue(true, kLaunch + 5));
    EXPECT_FALSE(resume.isWaiting());
    EXPECT_FALSE(resume.isTryDue(false, kLaunch + 10));
}

TEST(LaunchAutoResume, is_over_for_good_once_a_person_decided) {
    auto resume = waitingSinceLaunch();
    resume.personDecided();
    EXPECT_FALSE(resume.isWaiting());
    EXPECT_FALSE(resume.isTryDue(false, kLaunch + 10));
}

}  // namespace
}  // namespace sonavault
