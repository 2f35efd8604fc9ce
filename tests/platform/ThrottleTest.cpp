#include "platform/Throttle.h"

#include <gtest/gtest.h>

namespace sonavault::testing {
namespace {

constexpr double kNow = 1.8e9;

TEST(Throttle, is_due_at_first) {
    EXPECT_TRUE(Throttle(2).takeTurn(kNow));
}

TEST(Throttle, is_due_again_when_more_than_the_interval_has_passed) {
    Throttle last(2);
    last.takeTurn(kNow);
    EXPECT_FALSE(last.takeTurn(kNow));
    EXPECT_FALSE(last.takeTurn(kNow + 2)) << "no more than the interval";
    EXPECT_TRUE(last.takeTurn(kNow + 2.001));
}

TEST(Throttle, counts_from_the_last_time_that_it_was_due) {
    Throttle last(2);
    last.takeTurn(kNow);
    last.takeTurn(kNow + 1.5);
    EXPECT_TRUE(last.takeTurn(kNow + 2.5));
    EXPECT_FALSE(last.takeTurn(kNow + 4.5));
}

TEST(Throttle, is_due_when_the_clock_was_set_back) {
    Throttle last(30);
    last.takeTurn(kNow);
    EXPECT_TRUE(last.takeTurn(kNow - 3600));
    EXPECT_FALSE(last.takeTurn(kNow - 3590)) << "and counts from there";
    EXPECT_TRUE(last.takeTurn(kNow - 3569));
}

}  // namespace
}  // namespace sonavault::testing
