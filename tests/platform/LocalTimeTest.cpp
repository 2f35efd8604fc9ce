#include "platform/LocalTime.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "support/ScopedTimeZone.h"

namespace sonavault::testing {
namespace {

using namespace std::chrono;

WallTime utc(int y, unsigned m, unsigned d, int hour = 0, int minute = 0, int second = 0,
             int nanosecond = 0) {
    return sys_days(year(y) / month(m) / day(d)) + hours(hour) + minutes(minute) + seconds(second) +
           nanoseconds(nanosecond);
}

void expectLocal(WallTime moment, const std::string& date, double clockSeconds) {
    EXPECT_EQ(isoDateString(moment), date);
    EXPECT_DOUBLE_EQ(clockSecondsSinceMidnight(moment), clockSeconds);
}

constexpr double kHour = 3600;

TEST(LocalTime, tells_every_field_to_the_nanosecond) {
    const ScopedTimeZone zone("Asia/Kathmandu");
    const LocalTime local = localTime(utc(2026, 2, 28, 18, 20, 7, 123'456'789));
    EXPECT_EQ(local.year, 2026);
    EXPECT_EQ(local.month, 3);
    EXPECT_EQ(local.day, 1);
    EXPECT_EQ(local.hour, 0);
    EXPECT_EQ(local.minute, 5);
    EXPECT_EQ(local.second, 7);
    EXPECT_EQ(local.nanosecond, 123'456'789);
}

TEST(LocalTime, counts_fractions_forward_before_1970_too) {
    const ScopedTimeZone zone("UTC");
    const LocalTime local = localTime(WallTime(nanoseconds(-1)));
    EXPECT_EQ(local.year, 1969);
    EXPECT_EQ(local.second, 59);
    EXPECT_EQ(local.nanosecond, 999'999'999);
    EXPECT_EQ(localTime(WallTime(seconds(-1))).second, 59);
    EXPECT_EQ(localTime(WallTime(seconds(-1))).nanosecond, 0);
    expectLocal(WallTime(milliseconds(-500)), "1969-12-31", 86399.5);
}

TEST(LocalTime, obeys_the_zone_as_it_stands_at_each_call) {
    const WallTime moment = utc(2026, 7, 1, 23, 30);
    {
        const ScopedTimeZone zone("UTC");
        expectLocal(moment, "2026-07-01", 23.5 * kHour);
    }
    const ScopedTimeZone first("Europe/Berlin");
    expectLocal(moment, "2026-07-02", 1.5 * kHour);
    // As another part of the process might do it, without telling the C library.
    setenv("TZ", "America/New_York", 1);
    expectLocal(moment, "2026-07-01", 19.5 * kHour);
}

TEST(LocalTime, shows_the_wall_clock_where_berlin_leaves_out_an_hour) {
    const ScopedTimeZone zone("Europe/Berlin");
    expectLocal(utc(2026, 3, 28, 23), "2026-03-29", 0);
    expectLocal(utc(2026, 3, 29, 0, 59, 59, 500'000'000), "2026-03-29", 2 * kHour - 0.5);
    expectLocal(utc(2026, 3, 29, 1), "2026-03-29", 3 * kHour);
    expectLocal(utc(2026, 3, 29, 21, 59, 59), "2026-03-29", 24 * kHour - 1);
    expectLocal(utc(2026, 3, 29, 22), "2026-03-30", 0);
}

TEST(LocalTime, shows_the_wall_clock_where_berlin_repeats_an_hour) {
    const ScopedTimeZone zone("Europe/Berlin");
    expectLocal(utc(2026, 10, 25, 0, 0), "2026-10-25", 2 * kHour);
    expectLocal(utc(2026, 10, 25, 0, 59, 59), "2026-10-25", 3 * kHour - 1);
    expectLocal(utc(2026, 10, 25, 1), "2026-10-25", 2 * kHour);
    expectLocal(utc(2026, 10, 25, 2), "2026-10-25", 3 * kHour);
    expectLocal(utc(2026, 10, 25, 22, 59, 59), "2026-10-25", 24 * kHour - 1);
}

TEST(LocalTime, shows_the_wall_clock_on_both_changes_in_new_york) {
    const ScopedTimeZone zone("America/New_York");
    expectLocal(utc(2026, 3, 8, 6, 59, 59), "2026-03-08", 2 * kHour - 1);
    expectLocal(utc(2026, 3, 8, 7), "2026-03-08", 3 * kHour);
    expectLocal(utc(2026, 11, 1, 5, 59, 59), "2026-11-01", 2 * kHour - 1);
    expectLocal(utc(2026, 11, 1, 6), "2026-11-01", 1 * kHour);
    expectLocal(utc(2026, 11, 2, 4, 59, 59, 250'000'000), "2026-11-01", 24 * kHour - 0.75);
    expectLocal(utc(2026, 11, 2, 5), "2026-11-02", 0);
}

TEST(LocalTime, knows_leap_years) {
    const ScopedTimeZone zone("UTC");
    EXPECT_EQ(isoDateString(utc(2028, 2, 29, 12)), "2028-02-29");
    EXPECT_EQ(isoDateString(utc(2028, 2, 28, 24)), "2028-02-29");
    EXPECT_EQ(isoDateString(utc(2027, 2, 28, 24)), "2027-03-01");
    EXPECT_EQ(isoDateString(utc(2100, 2, 28, 24)), "2100-03-01");
    EXPECT_EQ(isoDateString(utc(2000, 2, 29)), "2000-02-29");
}

TEST(LocalTime, tells_the_first_and_the_last_moment_that_the_clock_can_hold) {
    const ScopedTimeZone zone("UTC");
    EXPECT_EQ(isoDateString(WallTime::min()), "1677-09-21");
    EXPECT_EQ(isoDateString(WallTime::max()), "2262-04-11");
    EXPECT_EQ(iso8601WithMilliseconds(WallTime::min()), "1677-09-21T00:12:43.145Z");
    EXPECT_EQ(iso8601WithMilliseconds(WallTime::max()), "2262-04-11T23:47:16.854Z");
}

TEST(Iso8601, is_written_in_utc_with_milliseconds_whatever_the_zone) {
    const ScopedTimeZone zone("America/New_York");
    EXPECT_EQ(iso8601WithMilliseconds(utc(2026, 3, 1, 14, 5, 9, 123'000'000)),
              "2026-03-01T14:05:09.123Z");
    EXPECT_EQ(iso8601WithMilliseconds(utc(2026, 3, 1)), "2026-03-01T00:00:00.000Z");
    EXPECT_EQ(iso8601WithMilliseconds(utc(2026, 12, 31, 23, 59, 59, 999'999'999)),
              "2026-12-31T23:59:59.999Z");
    EXPECT_EQ(iso8601WithMilliseconds(WallTime(nanoseconds(-1))), "1969-12-31T23:59:59.999Z");
}

TEST(Iso8601, reads_back_no_later_than_the_moment_and_within_a_millisecond) {
    std::mt19937_64 random(4711);
    std::uniform_int_distribution<std::int64_t> count(-8'000'000'000'000'000'000,
                                                      8'000'000'000'000'000'000);
    for (int i = 0; i < 5000; ++i) {
        const WallTime moment{nanoseconds(count(random))};
        WallTime back;
        const std::string text = iso8601WithMilliseconds(moment);
        ASSERT_TRUE(parseIso8601WithFraction(text, back)) << text;
        ASSERT_LE(back, moment) << text;
        ASSERT_LT(moment - back, milliseconds(1)) << text;
        ASSERT_EQ(iso8601WithMilliseconds(back), text);
    }
}

TEST(Iso8601, reads_any_number_of_digits_behind_the_point) {
    const auto fraction = [](const std::string& digits) {
        WallTime moment;
        EXPECT_TRUE(parseIso8601WithFraction("2026-03-01T14:05:09." + digits + "Z", moment))
            << digits;
        return (moment - utc(2026, 3, 1, 14, 5, 9)).count();
    };
    EXPECT_EQ(fraction("5"), 500'000'000);
    EXPECT_EQ(fraction("05"), 50'000'000);
    EXPECT_EQ(fraction("123"), 123'000'000);
    EXPECT_EQ(fraction("123456789"), 123'456'789);
    EXPECT_EQ(fraction("1234567899999"), 123'456'789);
    EXPECT_EQ(fraction(std::string(200, '0')), 0);
    EXPECT_EQ(fraction(std::string(200, '9')), 999'999'999);
}

TEST(Iso8601, reads_zone_offsets) {
    const auto read = [](const std::string& zone) {
        WallTime moment;
        EXPECT_TRUE(parseIso8601WithFraction("2026-03-01T00:30:00.5" + zone, moment)) << zone;
        return moment;
    };
    EXPECT_EQ(read("Z"), utc(2026, 3, 1, 0, 30, 0, 500'000'000));
    EXPECT_EQ(read("+00:00"), read("Z"));
    EXPECT_EQ(read("-00:00"), read("Z"));
    EXPECT_EQ(read("+01:00"), utc(2026, 2, 28, 23, 30, 0, 500'000'000));
    EXPECT_EQ(read("+0545"), utc(2026, 2, 28, 18, 45, 0, 500'000'000));
    EXPECT_EQ(read("-0500"), utc(2026, 3, 1, 5, 30, 0, 500'000'000));
    EXPECT_EQ(read("-03:30"), utc(2026, 3, 1, 4, 0, 0, 500'000'000));
    EXPECT_EQ(read("+23:59"), utc(2026, 2, 28, 0, 31, 0, 500'000'000));
}

TEST(Iso8601, reads_leap_days_only_where_they_exist) {
    WallTime moment;
    EXPECT_TRUE(parseIso8601WithFraction("2028-02-29T12:00:00.0Z", moment));
    EXPECT_EQ(moment, utc(2028, 2, 29, 12));
    EXPECT_TRUE(parseIso8601WithFraction("2000-02-29T12:00:00.0Z", moment));
    EXPECT_FALSE(parseIso8601WithFraction("2026-02-29T12:00:00.0Z", moment));
    EXPECT_FALSE(parseIso8601WithFraction("2100-02-29T12:00:00.0Z", moment));
}

TEST(Iso8601, refuses_what_is_no_complete_and_real_moment) {
    const std::vector<std::string> bad = {
        "",
        "2026-03-01T14:05:09Z",     // no fraction
        "2026-03-01T14:05:09.Z",    // nor here
        "2026-03-01T14:05:09.123",  // no zone
        "2026-03-01T14:05:09.123z",
        "2026-03-01t14:05:09.123Z",
        "2026-03-01 14:05:09.123Z",
        "2026-03-01T14:05:09,123Z",
        "2026-03-01T14:05:09.123ZZ",
        "2026-03-01T14:05:09.123Z ",
        " 2026-03-01T14:05:09.123Z",
        "2026-03-01T14:05:09.-123Z",
        "2026-03-01T14:05:09.123+01",
        "2026-03-01T14:05:09.123+1:00",
        "2026-03-01T14:05:09.123+24:00",
        "2026-03-01T14:05:09.123+01:60",
        "2026-03-01T14:05:09.123+01:00:00",
        "2026-03-01T14:05:09.123 01:00",
        "2026-00-01T14:05:09.123Z",
        "2026-13-01T14:05:09.123Z",
        "2026-03-00T14:05:09.123Z",
        "2026-03-32T14:05:09.123Z",
        "2026-04-31T14:05:09.123Z",
        "2026-03-01T24:00:00.000Z",
        "2026-03-01T14:60:09.123Z",
        "2026-03-01T14:05:60.123Z",
        "2026-3-01T14:05:09.123Z",
        "26-03-01T14:05:09.123Z",
        "+2026-03-01T14:05:09.123Z",
        "-2026-03-01T14:05:09.123Z",
        "20260301T140509.123Z",
        "2026-03-01T14:05.123Z",
    };
    for (const auto& text : bad) {
        WallTime moment = utc(1999, 1, 1);
        EXPECT_FALSE(parseIso8601WithFraction(text, moment)) << text;
        EXPECT_EQ(moment, utc(1999, 1, 1)) << "touched by " << text;
    }
}

TEST(Iso8601, refuses_every_text_that_is_cut_short) {
    const std::string whole = "2026-03-01T14:05:09.123+01:00";
    WallTime moment;
    ASSERT_TRUE(parseIso8601WithFraction(whole, moment));
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_FALSE(parseIso8601WithFraction(whole.substr(0, length), moment)) << length;
}

TEST(Iso8601, refuses_moments_that_the_clock_cannot_hold) {
    WallTime moment;
    EXPECT_FALSE(parseIso8601WithFraction("9999-12-31T23:59:59.999Z", moment));
    EXPECT_FALSE(parseIso8601WithFraction("0000-01-01T00:00:00.000Z", moment));
    EXPECT_FALSE(parseIso8601WithFraction("2262-04-11T23:47:17.000Z", moment));
    EXPECT_FALSE(parseIso8601WithFraction("1677-09-21T00:12:42.000Z", moment));
    EXPECT_TRUE(parseIso8601WithFraction("2262-04-11T23:47:15.999999999Z", moment));
    EXPECT_TRUE(parseIso8601WithFraction("1677-09-21T00:12:45.000Z", moment));
}

}  // namespace
}  // namespace sonavault::testing
