#include "platform/Clock.h"

#include <gtest/gtest.h>

namespace sonavault::testing {
namespace {

using namespace std::chrono;

TEST(Clock, tells_the_seconds_between_two_moments) {
    const WallTime noon = sys_days(year(2026) / 3 / 2) + hours(12);
    EXPECT_EQ(secondsBetween(noon, noon + milliseconds(1500)), 1.5);
    EXPECT_EQ(secondsBetween(noon + milliseconds(1500), noon), -1.5);
    EXPECT_EQ(secondsBetween(WallTime(-milliseconds(500)), WallTime(milliseconds(500))), 1.0);
}

TEST(Clock, tells_the_seconds_between_the_ends_of_its_range) {
    constexpr double kRange = 18446744073.7;
    EXPECT_NEAR(secondsBetween(WallTime::min(), WallTime::max()), kRange, 0.1);
    EXPECT_NEAR(secondsBetween(WallTime::max(), WallTime::min()), -kRange, 0.1);
}

}  // namespace
}  // namespace sonavault::testing
