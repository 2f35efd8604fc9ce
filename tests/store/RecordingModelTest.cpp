#include "store/RecordingModel.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/ManualClock.h"
#include "support/Moments.h"
#include "support/ScopedTimeZone.h"

namespace sonavault {
namespace {

using testing::at;
using testing::ManualClock;
using testing::ScopedTimeZone;

TEST(FormatTime, prints_hours_minutes_and_seconds) {
    EXPECT_EQ(formatTime(3661), "01:01:01");
    EXPECT_EQ(formatTime(0), "00:00:00");
}

TEST(FormatTime, prints_a_negative_time_as_zero) {
    EXPECT_EQ(formatTime(-3.0), "00:00:00");
    EXPECT_EQ(formatTime(-3.0, false), "00:00");
}

TEST(FormatTime, does_not_wrap_hours_at_24) {
    EXPECT_EQ(formatTime(90061.9), "25:01:01");
}

TEST(FormatTime, cuts_and_does_not_round) {
    EXPECT_EQ(formatTime(3599.99, false), "00:59");
    EXPECT_EQ(formatTime(59.999), "00:00:59");
}

TEST(FormatTime, survives_what_is_no_time) {
    EXPECT_EQ(formatTime(std::numeric_limits<double>::quiet_NaN()), "00:00:00");
    EXPECT_FALSE(formatTime(std::numeric_limits<double>::infinity()).empty());
}

TEST(TimeBase, a_marker_plays_from_its_place_in_a_file_that_began_later) {
    const DaySeconds fileStart{1800};
    const Marker marker{"hour", 3600, "", 0};
    EXPECT_EQ(inFile(DaySeconds{marker.timeSec}, fileStart).value, 1800);
    EXPECT_EQ(formatTime(marker.timeSec), "01:00:00");
    EXPECT_EQ(onDay(FileSeconds{1800}, fileStart).value, marker.timeSec);
}

TEST(Selection, reads_its_ends_in_order_however_they_stand) {
    Selection selection;
    selection.startSec = 50;
    selection.endSec = 10;
    EXPECT_EQ(selection.lowSec(), 10);
    EXPECT_EQ(selection.highSec(), 50);
    EXPECT_EQ(selection.durationSec(), 40);
}

TEST(Selection, has_an_identity_of_its_own) {
    EXPECT_NE(Selection().id, Selection().id);
}

TEST(LaneFor, puts_each_known_type_in_its_lane) {
    EXPECT_EQ(laneFor("hour"), Lane::hour);
    EXPECT_EQ(laneFor("break"), Lane::breaks);
    for (const auto* type : {"vt", "vt-pre", "vt-post", "vt_start", "vt_end"})
        EXPECT_EQ(laneFor(type), Lane::vt) << type;
    for (const auto* type : {"mic", "mic_start", "mic_end"})
        EXPECT_EQ(laneFor(type), Lane::mic) << type;
    EXPECT_EQ(laneFor("eas"), Lane::eas);
    for (const auto* type : {"silence_start", "silence_end", "custom", "", "news"})
        EXPECT_EQ(laneFor(type), Lane::custom) << type;
}

TEST(LaneFor, goes_by_the_beginning_for_voicetracks_and_the_microphone_and_by_the_whole_word_else) {
    EXPECT_EQ(laneFor("vtx"), Lane::vt);
    EXPECT_EQ(laneFor("microphone"), Lane::mic);
    EXPECT_EQ(laneFor("easy"), Lane::custom);
    EXPECT_EQ(laneFor("breaks"), Lane::custom);
    EXPECT_EQ(laneFor("Hour"), Lane::custom);
}

TEST(IsISOdate, tests_the_shape_alone) {
    EXPECT_TRUE(isISOdate("2026-05-08"));
    EXPECT_TRUE(isISOdate("2026-13-45"));
    EXPECT_TRUE(isISOdate("2026-+1-01"));
}

TEST(IsISOdate, refuses_any_other_shape) {
    for (const auto* text :
         {"2026-5-08", "20260508xx", "", "2026-05-8", "2026-05-080", "2026-05-0x", "2026-0 -08",
          "2026--5-08", "-026-05-08", "2026-05-+", "2026-05-+-", "2026/05/08", "२०२६-05"})
        EXPECT_FALSE(isISOdate(text)) << text;
}

TEST(ShortDayOfWeek, names_the_day_in_english) {
    EXPECT_EQ(shortDayOfWeek("2026-05-08"), "Fri");
    EXPECT_EQ(shortDayOfWeek("2024-02-29"), "Thu");
    EXPECT_EQ(shortDayOfWeek("1999-12-31"), "Fri");
}

TEST(ShortDayOfWeek, is_absent_for_what_is_no_date) {
    for (const auto* text :
         {"2026-13-45", "2026-02-29", "2026-+1-01", "2026-00-10", "nonsense", ""})
        EXPECT_FALSE(shortDayOfWeek(text)) << text;
}

TEST(TodayDateString, changes_at_local_midnight) {
    const ScopedTimeZone berlin("Europe/Berlin");
    ManualClock clock(at("2026-03-01T22:59:59.900Z"));
    EXPECT_EQ(todayDateString(clock), "2026-03-01");
    clock.advance(0.2);
    EXPECT_EQ(todayDateString(clock), "2026-03-02");
}

TEST(TodayDateString, follows_the_zone_as_it_stands_at_the_call) {
    const ManualClock clock(at("2026-03-01T23:30:00.000Z"));
    {
        const ScopedTimeZone zone("UTC");
        EXPECT_EQ(todayDateString(clock), "2026-03-01");
    }
    const ScopedTimeZone zone("Asia/Tokyo");
    EXPECT_EQ(todayDateString(clock), "2026-03-02");
}

}  // namespace
}  // namespace sonavault
