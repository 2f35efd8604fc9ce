#include "review/TimelineRows.h"

#include <gtest/gtest.h>

#include <limits>

#include "review/TimelineMapping.h"

namespace sonavault::testing {
namespace {

TEST(TimelineMapping, takes_the_width_of_the_view_before_the_first_layout) {
    EXPECT_EQ(mappingWidth(0, 700), 700);
    EXPECT_EQ(mappingWidth(1000, 700), 1000);
}

TEST(TimelineMapping, stretches_a_whole_day_over_the_width) {
    EXPECT_EQ(xAt({0}, 1000), 0);
    EXPECT_EQ(xAt({43200}, 1000), 500);
    EXPECT_EQ(xAt({86400}, 1000), 1000);
    EXPECT_EQ(secAt(250, 1000).value, 21600);
}

TEST(TimelineMapping, limits_a_place_beside_the_axis_to_the_day) {
    EXPECT_EQ(secAt(1200, 1000).value, 86400);
    EXPECT_EQ(secAt(-3, 1000).value, 0);
}

TEST(TimelineMapping, is_midnight_where_there_is_no_axis) {
    EXPECT_EQ(secAt(100, 0).value, 0);
    EXPECT_EQ(secAt(100, -5).value, 0);
}

TEST(TimelineRows, share_out_the_height_that_the_bars_leave) {
    const auto rows = layOutRows(allLanes(), {.width = 2000, .totalH = 682, .actionBarH = 50});
    ASSERT_EQ(rows.lanes.size(), 6U);
    EXPECT_EQ(rows.laneH, 100);
    EXPECT_EQ(rows.timelineWidth, 2000);
    EXPECT_EQ(rows.lanes[0].lane, Lane::hour);
    EXPECT_EQ(rows.lanes[0].frame, (Box{0, 0, 2000, 100}));
    EXPECT_EQ(rows.lanes[5].lane, Lane::custom);
    EXPECT_EQ(rows.lanes[5].frame, (Box{0, 500, 2000, 100}));
    EXPECT_EQ(rows.summaryBar, (Box{0, 600, 2000, 50}));
    EXPECT_EQ(rows.timeAxis, (Box{0, 650, 2000, 32}));
    EXPECT_EQ(rows.content, (Size{2000, 682}));
}

TEST(TimelineRows, an_inset_narrows_the_axis_and_not_the_summary_bar) {
    const auto rows = layOutRows({Lane::vt}, {.width = 100, .totalH = 200, .rightInset = 30});
    EXPECT_EQ(rows.timelineWidth, 70);
    EXPECT_EQ(rows.lanes[0].frame.width, 70);
    EXPECT_EQ(rows.summaryBar.width, 100);
    EXPECT_EQ(rows.timeAxis.width, 70);
    EXPECT_EQ(layOutRows({}, {.width = 20, .rightInset = 30}).timelineWidth, 0);
}

TEST(TimelineRows, without_lanes_the_bars_move_to_the_top) {
    const auto rows = layOutRows({}, {.width = 1000, .totalH = 600});
    EXPECT_EQ(rows.laneH, 32);
    EXPECT_TRUE(rows.lanes.empty());
    EXPECT_EQ(rows.summaryBar.y, 0);
    EXPECT_EQ(rows.timeAxis.y, 50);
    EXPECT_EQ(rows.content.height, 82);
}

TEST(TimelineRows, lanes_that_are_too_many_for_a_short_window_stay_32_high) {
    const auto rows = layOutRows(allLanes(), {.width = 1000, .totalH = 120});
    EXPECT_EQ(rows.laneH, 32);
    EXPECT_EQ(rows.content.height, 6 * 32 + 50 + 32);
}

TEST(TimelineRows, the_hour_lane_alone_fills_all_the_height) {
    const auto rows = layOutRows({Lane::hour}, {.width = 1000, .totalH = 600});
    ASSERT_EQ(rows.lanes.size(), 1U);
    EXPECT_EQ(rows.laneH, 600 - 50 - 32);
    EXPECT_EQ(rows.summaryBar.y, rows.laneH);
}

TEST(TimelineRows, the_content_is_never_narrower_than_what_is_seen) {
    EXPECT_EQ(contentWidth(1000, 1), 1000);
    EXPECT_EQ(contentWidth(1000, 720), 720000);
    EXPECT_EQ(contentWidth(1000, 0.5), 1000);
}

TEST(TimelineRows, the_playhead_stands_with_its_middle_on_its_moment) {
    EXPECT_EQ(playheadFrame({43200}, 1000, 300), (Box{499, 0, 2, 300}));
    EXPECT_EQ(playheadFrame({0}, 1000, 300).x, -1);
}

TEST(TimelineRows, the_playhead_stays_beside_the_axis_however_far_it_is) {
    EXPECT_EQ(playheadFrame({1e300}, 1000, 300), (Box{1000, 0, 2, 300}));
    EXPECT_EQ(playheadFrame({-1e300}, 1000, 300), (Box{-1, 0, 2, 300}));
    EXPECT_EQ(playheadFrame({86400}, 1000, 300).x, 999);
    constexpr double kInfinite = std::numeric_limits<double>::infinity();
    for (const double none : {std::numeric_limits<double>::quiet_NaN(), kInfinite, -kInfinite})
        EXPECT_EQ(playheadFrame({none}, 1000, 300), (Box{-1, 0, 2, 300}));
}

TEST(LaneLabels, stand_in_the_middle_of_the_visible_lanes) {
    const auto cells = layOutLaneLabels({Lane::vt, Lane::hour}, 76, 282, 50);
    ASSERT_EQ(cells.size(), 2U);
    EXPECT_EQ(cells[0].lane, Lane::hour);
    EXPECT_EQ(cells[0].backing, (Box{0, 0, 76, 100}));
    EXPECT_EQ(cells[0].label, (Box{8, 35, 60, 30}));
    EXPECT_EQ(cells[1].backing, (Box{0, 100, 76, 100}));
    EXPECT_EQ(cells[1].label, (Box{8, 135, 60, 30}));
}

TEST(LaneLabels, have_no_width_in_a_column_of_margins) {
    EXPECT_EQ(layOutLaneLabels({Lane::eas}, 10, 100, 50).at(0).label.width, 0);
}

TEST(LaneLabels, are_as_high_as_the_lanes_beside_them) {
    for (const double height : {60.0, 240.0, 600.0}) {
        const auto rows =
            layOutRows(allLanes(), {.width = 900, .totalH = height, .actionBarH = 80});
        const auto cells = layOutLaneLabels(allLanes(), 76, height, 80);
        ASSERT_EQ(cells.size(), rows.lanes.size());
        for (std::size_t i = 0; i < cells.size(); ++i) {
            EXPECT_EQ(cells[i].backing.y, rows.lanes[i].frame.y);
            EXPECT_EQ(cells[i].backing.height, rows.lanes[i].frame.height);
        }
    }
}

TEST(ActionBarResize, dragging_up_enlarges_the_bar) {
    const ActionBarResize drag(200, 60);
    EXPECT_EQ(drag.heightAt(230, 60), 90);
    EXPECT_EQ(drag.heightAt(195, 60), 55);
}

TEST(ActionBarResize, stays_between_50_and_180) {
    const ActionBarResize drag(200, 60);
    EXPECT_EQ(drag.heightAt(900, 60), 180);
    EXPECT_EQ(drag.heightAt(0, 60), 50);
}

TEST(ActionBarResize, asks_for_no_layout_without_a_change) {
    const ActionBarResize drag(200, 60);
    EXPECT_EQ(drag.heightAt(200.05, 60), std::nullopt);
    EXPECT_EQ(drag.heightAt(900, 180), std::nullopt);
    EXPECT_EQ(drag.heightAt(200.2, 60), 60 + (200.2 - 200));
}

}  // namespace
}  // namespace sonavault::testing
