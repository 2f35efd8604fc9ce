#include "life/LifeCalendar.h"

#include <gtest/gtest.h>

#include <set>

#include "platform/LocalTime.h"
#include "support/ScopedTimeZone.h"

namespace sonavault::testing {
namespace {

WallTime momentOf(double seconds) {
    return after(WallTime{}, seconds);
}

TEST(LifeCalendar, knows_the_changes_of_a_zone_and_the_ends_of_their_days) {
    const ScopedTimeZone zone("Europe/Berlin");
    std::mt19937 random(1);
    const auto moments = bigMoments(0, random);
    ASSERT_EQ(moments.size(), 5U);
    EXPECT_EQ(iso8601WithMilliseconds(momentOf(moments[1].at)), "2026-03-29T01:00:00.000Z");
    EXPECT_EQ(iso8601WithMilliseconds(momentOf(moments[2].at)), "2026-10-25T01:00:00.000Z");
    EXPECT_EQ(iso8601WithMilliseconds(momentOf(moments[3].at)), "2027-03-28T22:00:00.000Z");
    EXPECT_EQ(iso8601WithMilliseconds(momentOf(moments[4].at)), "2027-10-31T23:00:00.000Z");
    EXPECT_EQ(clockSecondsSinceMidnight(momentOf(moments[0].at)), 0);
    EXPECT_EQ(clockSecondsSinceMidnight(momentOf(quietNoon(0))), 43200);
}

TEST(LifeCalendar, never_comes_to_a_day_twice) {
    const ScopedTimeZone zone("America/New_York");
    std::mt19937 random(1);
    std::set<std::string> days;
    std::size_t moments = 0;
    for (int round = 0; round < 12; ++round) {
        for (const auto& moment : bigMoments(round, random)) {
            days.insert(isoDateString(momentOf(moment.at - 60)));
            ++moments;
        }
        days.insert(isoDateString(momentOf(quietNoon(round))));
        ++moments;
    }
    EXPECT_EQ(days.size(), moments);
}

}  // namespace
}  // namespace sonavault::testing
