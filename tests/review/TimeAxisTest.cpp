#include "review/TimeAxis.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace sonavault::testing {
namespace {

constexpr Extent kAll{0, 1e9};
constexpr double kTwoDigitLabel = 40;

std::vector<std::string> labelsOf(const std::vector<AxisTick>& ticks) {
    std::vector<std::string> texts;
    for (const AxisTick& each : ticks)
        if (each.label) texts.push_back(each.label->text);
    return texts;
}

TEST(TimeAxis, ticks_stand_closer_as_one_zooms_in) {
    EXPECT_EQ(tickStep(1), 3600);
    EXPECT_EQ(tickStep(1.49), 3600);
    EXPECT_EQ(tickStep(1.5), 1800);
    EXPECT_EQ(tickStep(6), 600);
    EXPECT_EQ(tickStep(48), 60);
    EXPECT_EQ(tickStep(287.9), 60);
    EXPECT_EQ(tickStep(288), 10);
    EXPECT_EQ(tickStep(720), 10);
}

TEST(TimeAxis, labels_have_seconds_where_ticks_are_closer_than_a_minute) {
    EXPECT_EQ(axisLabelText(3600, 287.9), "01:00");
    EXPECT_EQ(axisLabelText(3610, 288), "01:00:10");
}

TEST(TimeAxis, labels_grow_up_to_17_points) {
    EXPECT_EQ(axisFontSize(1), 12);
    EXPECT_EQ(axisFontSize(0.5), 12);
    EXPECT_DOUBLE_EQ(axisFontSize(4), 13.7);
    EXPECT_EQ(axisFontSize(720), 17);
}

TEST(TimeAxis, a_whole_day_has_a_tick_each_hour_and_no_label_at_its_end) {
    const auto ticks = timeAxisTicks(1, {2400, 32}, kTwoDigitLabel, kAll);
    ASSERT_EQ(ticks.size(), 25U);
    EXPECT_EQ(ticks[1].line, (Box{100, 0, 1, 32}));
    EXPECT_EQ(ticks[1].label, (AxisLabel{"01:00", {105, 14}}));
    EXPECT_EQ(ticks[24].line.x, 2400);
    EXPECT_FALSE(ticks[24].label);
    EXPECT_EQ(labelsOf(ticks).size(), 24U);
}

TEST(TimeAxis, skips_labels_that_would_collide_and_draws_their_ticks) {
    // Ticks 20 points apart, labels of 40 with a gap of 8: each third has room.
    const auto ticks = timeAxisTicks(1, {480, 32}, kTwoDigitLabel, kAll);
    EXPECT_EQ(ticks.size(), 25U);
    EXPECT_EQ(labelsOf(ticks), (std::vector<std::string>{"00:00", "03:00", "06:00", "09:00",
                                                         "12:00", "15:00", "18:00", "21:00"}));
}

TEST(TimeAxis, gives_a_label_the_room_that_just_suffices) {
    // 48 points a tick are 40 of label and 8 of gap.
    EXPECT_EQ(labelsOf(timeAxisTicks(1, {1152, 32}, kTwoDigitLabel, kAll)).size(), 24U);
    EXPECT_EQ(labelsOf(timeAxisTicks(1, {1152, 32}, kTwoDigitLabel + 0.5, kAll)).size(), 12U);
}

TEST(TimeAxis, exposes_the_same_ticks_and_labels_wherever_one_looks) {
    const Size size{720000, 32};
    const auto whole = timeAxisTicks(720, size, 66, kAll);
    ASSERT_EQ(whole.size(), 8641U);
    for (const double left : {0.0, 1000.0, 123456.0, 719000.0}) {
        const auto seen = timeAxisTicks(720, size, 66, {left, left + 1000});
        EXPECT_LT(seen.size(), 20U);
        std::size_t inWhole = 0;
        for (const AxisTick& each : whole) {
            if (each.line.x > left + 1000 || each.line.x < left) continue;
            ++inWhole;
            const bool found = std::any_of(seen.begin(), seen.end(), [&each](const AxisTick& tick) {
                return tick.line == each.line && tick.label == each.label;
            });
            EXPECT_TRUE(found) << each.line.x;
        }
        EXPECT_GE(seen.size(), inWhole);
        EXPECT_GT(inWhole, 5U);
    }
}

TEST(TimeAxis, exposes_a_label_whose_tick_is_left_of_what_is_exposed) {
    const auto ticks = timeAxisTicks(1, {2400, 32}, kTwoDigitLabel, {120, 130});
    ASSERT_EQ(ticks.size(), 1U);
    EXPECT_EQ(ticks[0].line.x, 100);
}

TEST(TimeAxis, without_a_width_has_nothing_to_read) {
    EXPECT_TRUE(labelsOf(timeAxisTicks(1, {0, 32}, kTwoDigitLabel, kAll)).empty());
}

}  // namespace
}  // namespace sonavault::testing
