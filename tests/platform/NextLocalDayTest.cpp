#include <gtest/gtest.h>

#include <string>

#include "platform/LocalTime.h"
#include "support/Moments.h"
#include "support/ScopedTimeZone.h"

namespace sonavault::testing {
namespace {

std::string startAfter(const std::string& utc) {
    return iso8601WithMilliseconds(startOfNextLocalDay(at(utc)));
}

TEST(NextLocalDay, begins_at_local_midnight) {
    const ScopedTimeZone zone("Europe/Berlin");
    EXPECT_EQ(startAfter("2026-03-02T13:05:09.123Z"), "2026-03-02T23:00:00.000Z");
    EXPECT_EQ(startAfter("2026-03-02T22:59:59.999999999Z"), "2026-03-02T23:00:00.000Z");
    EXPECT_EQ(startAfter("2026-03-02T23:00:00.000Z"), "2026-03-03T23:00:00.000Z");
    EXPECT_EQ(startAfter("2026-12-31T22:00:00.500Z"), "2026-12-31T23:00:00.000Z");
    EXPECT_EQ(startAfter("1969-06-01T12:00:00.500Z"), "1969-06-01T23:00:00.000Z");
}

TEST(NextLocalDay, comes_after_23_and_25_hours_where_the_clocks_change) {
    const ScopedTimeZone zone("Europe/Berlin");
    EXPECT_EQ(startAfter("2026-03-28T23:00:00.000Z"), "2026-03-29T22:00:00.000Z");
    EXPECT_EQ(startAfter("2026-10-24T22:00:00.000Z"), "2026-10-25T23:00:00.000Z");
}

TEST(NextLocalDay, begins_after_the_gap_where_midnight_is_skipped) {
    const ScopedTimeZone zone("Asia/Beirut");  // 2024-03-31 begins at 01:00
    EXPECT_EQ(startAfter("2024-03-30T12:00:00.000Z"), "2024-03-30T22:00:00.000Z");
    const WallTime start = at("2024-03-30T22:00:00.000Z");
    EXPECT_EQ(localTime(start).hour, 1);
    EXPECT_EQ(localTime(start).day, 31);
}

TEST(NextLocalDay, begins_once_where_the_last_hour_comes_twice) {
    const ScopedTimeZone zone("Asia/Beirut");  // 2024-10-26 has 23:00 to 24:00 twice
    EXPECT_EQ(startAfter("2024-10-26T12:00:00.000Z"), "2024-10-26T22:00:00.000Z");
}

TEST(NextLocalDay, begins_at_the_first_midnight_where_midnight_comes_twice) {
    const ScopedTimeZone zone("America/Havana");  // 2024-11-03 has 00:00 to 01:00 twice
    EXPECT_EQ(startAfter("2024-11-02T12:00:00.000Z"), "2024-11-03T04:00:00.000Z");
    EXPECT_EQ(startAfter("2024-11-03T04:30:00.000Z"), "2024-11-04T05:00:00.000Z");
}

TEST(NextLocalDay, is_the_day_after_the_next_where_a_day_is_skipped) {
    const ScopedTimeZone zone("Pacific/Apia");  // there was no 2011-12-30
    EXPECT_EQ(startAfter("2011-12-30T09:00:00.000Z"), "2011-12-30T10:00:00.000Z");
}

}  // namespace
}  // namespace sonavault::testing
