#include "export/AircheckCardEditing.h"

#include <gmock/gmock.h>

namespace sonavault::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(AircheckCardEditing, adds_a_ticked_day_in_the_order_of_the_week) {
    EXPECT_THAT(daysAfterToggle({2, 5}, 3, true), ElementsAre(2, 3, 5));
    EXPECT_THAT(daysAfterToggle({}, 7, true), ElementsAre(7));
}

TEST(AircheckCardEditing, a_day_ticked_twice_is_there_once) {
    EXPECT_THAT(daysAfterToggle(daysAfterToggle({1}, 4, true), 4, true), ElementsAre(1, 4));
}

TEST(AircheckCardEditing, removes_every_instance_of_a_day) {
    EXPECT_THAT(daysAfterToggle({6, 2, 6, 1}, 6, false), ElementsAre(1, 2));
    EXPECT_THAT(daysAfterToggle({}, 6, false), IsEmpty());
}

TEST(AircheckCardEditing, knows_the_days_of_a_card) {
    ScheduledAircheckCard card;
    card.daysOfWeek = {1, 7};
    EXPECT_TRUE(hasDay(card, 7));
    EXPECT_FALSE(hasDay(card, 6));
}

TEST(AircheckCardEditing, shows_an_hour_off_the_clock_as_the_nearest_one) {
    EXPECT_EQ(shownHour(30), 23);
    EXPECT_EQ(shownHour(-1), 0);
    EXPECT_EQ(shownHour(12), 12);
}

TEST(AircheckCardEditing, titles_hours_with_two_digits) {
    EXPECT_EQ(hourTitle(0), "00:00");
    EXPECT_EQ(hourTitle(9), "09:00");
    EXPECT_EQ(hourTitle(23), "23:00");
}

TEST(AircheckCardEditing, tells_the_last_run) {
    ScheduledAircheckCard card;
    EXPECT_EQ(lastRunText(card), "Has not run yet.");
    card.lastRunDate = "2026-05-08";
    EXPECT_EQ(lastRunText(card), "Last exported: 2026-05-08");
}

}  // namespace
}  // namespace sonavault::testing
