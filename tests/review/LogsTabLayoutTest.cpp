#include "review/LogsTabLayout.h"

#include <gtest/gtest.h>

namespace sonavault::testing {
namespace {

// The tab in a window as it opens first: 1480 x 920 without the banner and the status bar.
constexpr Size kUsual{1480, 748};
constexpr Size kLeast{1100, 428};

TEST(LogsTabLayout, the_days_stand_left_and_the_bars_right_of_them) {
    const auto frames = logsTabFrames(kUsual);
    EXPECT_EQ(frames.dateListScroll, (Box{0, 0, 280, 748}));
    EXPECT_EQ(frames.filterBar, (Box{280, 0, 1200, 46}));
    EXPECT_EQ(frames.lanesScroll, (Box{356, 46, 1082, 538}));
    EXPECT_EQ(frames.zoomBar, (Box{280, 584, 1200, 44}));
    EXPECT_EQ(frames.transport, (Box{280, 628, 1200, 120}));
}

TEST(LogsTabLayout, the_bars_and_the_timeline_leave_no_gap_from_top_to_bottom) {
    for (const Size tab : {kLeast, kUsual, Size{2560, 1268}}) {
        const auto frames = logsTabFrames(tab);
        EXPECT_EQ(frames.filterBar.y, 0);
        EXPECT_EQ(frames.filterBar.bottom(), frames.lanesScroll.y);
        EXPECT_EQ(frames.lanesScroll.bottom(), frames.zoomBar.y);
        EXPECT_EQ(frames.zoomBar.bottom(), frames.transport.y);
        EXPECT_EQ(frames.transport.bottom(), tab.height);
        EXPECT_EQ(frames.transport.right(), tab.width);
    }
}

TEST(LogsTabLayout, the_export_button_stands_over_the_lower_right_corner_of_the_timeline) {
    // 14 above the zoom bar, 18 from the right.
    EXPECT_EQ(logsTabFrames(kUsual).exportSelectionsButton, (Box{1222, 532, 240, 38}));
}

TEST(LogsTabLayout, the_timeline_is_never_smaller_than_sixty_by_sixty) {
    for (const Size tab : {kLeast, Size{300, 100}, Size{0, 0}}) {
        const auto frames = logsTabFrames(tab);
        EXPECT_GE(frames.lanesScroll.width, 60);
        EXPECT_GE(frames.lanesScroll.height, 60);
    }
    EXPECT_EQ(logsTabFrames(kLeast).lanesScroll, (Box{356, 46, 702, 218}));
}

TEST(LogsTabLayout, in_too_low_a_tab_the_timeline_reaches_up_and_the_labels_stay_at_its_foot) {
    const Size tab{1100, 250};  // leaves 40 for the lanes
    const auto frames = logsTabFrames(tab);
    EXPECT_EQ(frames.lanesScroll.height, 60);
    EXPECT_EQ(frames.lanesScroll.bottom(), frames.zoomBar.y);
    EXPECT_EQ(laneLabelsFrame(tab, 60), (Box{280, 26, 76, 60}));
}

TEST(LogsTabLayout, the_labels_stand_beside_what_is_seen_of_the_timeline) {
    EXPECT_EQ(laneLabelsFrame(kUsual, 538), (Box{280, 46, 76, 538}));
    // A clip area lower than its room begins at the top.
    EXPECT_EQ(laneLabelsFrame(kUsual, 500), (Box{280, 46, 76, 500}));
}

TEST(LogsTabLayout, the_labels_take_the_height_of_the_timeline_before_that_is_known) {
    EXPECT_EQ(laneLabelsFrame(kUsual, 0), (Box{280, 46, 76, 538}));
}

TEST(LogsTabLayout, the_meters_stand_right_of_the_lanes_and_above_the_summary_bar) {
    const auto overlays = timelineOverlays(kUsual, 502);
    // From 6 below the filter bar to 6 above the summary bar.
    EXPECT_EQ(overlays.vuMeterL, (Box{1444, 52, 12, 444}));
    EXPECT_EQ(overlays.vuMeterR, (Box{1460, 52, 12, 444}));
}

TEST(LogsTabLayout, the_meters_are_at_least_forty_high) {
    const auto overlays = timelineOverlays(kUsual, 60);
    EXPECT_EQ(overlays.vuMeterL.height, 40);
    EXPECT_EQ(overlays.vuMeterL.bottom(), 54) << "they keep their foot and reach up";
    EXPECT_GE(timelineOverlays(kLeast, 238).vuMeterR.height, 40);
}

TEST(LogsTabLayout, the_handle_lies_across_the_upper_edge_of_the_summary_bar) {
    EXPECT_EQ(timelineOverlays(kUsual, 502).actionBarResizeHandle, (Box{280, 498, 1200, 8}));
}

TEST(LogsTabLayout, the_empty_state_is_centred_over_the_lanes) {
    const Box label = timelineOverlays(kUsual, 502).emptyStateLabel;
    EXPECT_EQ(label, (Box{577, 242, 640, 64}));
    EXPECT_EQ(label.x + label.width / 2, 356 + 1082 / 2.0);
    EXPECT_EQ(label.y + label.height / 2, (52 + 496) / 2.0);
}

TEST(LogsTabLayout, the_empty_state_is_no_wider_than_its_limits) {
    EXPECT_EQ(timelineOverlays(kLeast, 238).emptyStateLabel.width, 622);
    EXPECT_EQ(timelineOverlays({2560, 1268}, 900).emptyStateLabel.width, 640);
    EXPECT_EQ(timelineOverlays({600, 428}, 238).emptyStateLabel.width, 240);
}

TEST(LogsTabLayout, the_empty_state_stays_centred_where_the_lanes_are_lower_than_itself) {
    // The space between the filter bar and the summary bar is gone: the foot is at 6 above the bar.
    const Box label = timelineOverlays(kUsual, 50).emptyStateLabel;
    EXPECT_EQ(label.y + label.height / 2, 44);
}

TEST(ZoomBarLayout, the_whole_row_is_centred) {
    const auto frames = zoomBarFrames(1200, 5);
    // 68 for the label, five buttons of 76, four gaps of 4: 464.
    EXPECT_EQ(frames.label, (Box{368, 12, 60, 18}));
    ASSERT_EQ(frames.presets.size(), 5U);
    EXPECT_EQ(frames.presets[0], (Box{436, 8, 76, 28}));
    EXPECT_EQ(frames.presets[1], (Box{516, 8, 76, 28}));
    EXPECT_EQ(frames.presets[4].right(), 1200 - 368);
}

TEST(ZoomBarLayout, a_bar_without_presets_centres_its_label) {
    const auto frames = zoomBarFrames(268, 0);
    EXPECT_EQ(frames.label.x, 100);
    EXPECT_TRUE(frames.presets.empty());
}

TEST(TransportLayout, the_shuttle_is_centred_below_the_clock) {
    const auto frames = transportFrames(1200, 100);
    EXPECT_EQ(frames.transportTimeLabel, (Box{500, 14, 200, 28}));
    EXPECT_EQ(frames.shuttle[0], (Box{478, 50, 44, 44}));
    EXPECT_EQ(frames.shuttle[1].x, 528);
    EXPECT_EQ(frames.shuttle[2].x, 578);
    EXPECT_EQ(frames.shuttle[3].x, 628);
    EXPECT_EQ(frames.shuttle[4], (Box{678, 50, 44, 44}));
}

TEST(TransportLayout, the_texts_stand_at_the_foot_on_either_side) {
    const auto frames = transportFrames(1200, 100);
    EXPECT_EQ(frames.nowPlayingLabel, (Box{16, 96, 844, 20}));
    EXPECT_EQ(frames.selectionInfoLabel, (Box{864, 96, 320, 20}));
}

TEST(TransportLayout, a_long_report_of_selections_takes_room_from_what_is_playing) {
    const auto frames = transportFrames(820, 344);
    EXPECT_EQ(frames.selectionInfoLabel, (Box{460, 96, 344, 20}));
    EXPECT_EQ(frames.nowPlayingLabel, (Box{16, 96, 428, 20}));
    EXPECT_EQ(transportFrames(100, 344).nowPlayingLabel.width, 0);
}

FilterBarContent sixFilters() {
    // As wide as the six are with the window's face.
    return {{{61, 20}, {66, 20}, {99, 20}, {75, 20}, {48, 20}, {61, 20}}, false};
}

TEST(FilterBarLayout, each_filter_follows_the_one_before_at_its_natural_width) {
    const auto frames = filterBarFrames(1200, sixFilters());
    EXPECT_EQ(frames.swatches[0], (Box{16, 16, 14, 14}));
    EXPECT_EQ(frames.checkboxes[0], (Box{34, 13, 61, 20}));
    EXPECT_EQ(frames.swatches[1], (Box{16 + 18 + 61 + 20, 16, 14, 14}));
    EXPECT_EQ(frames.checkboxes[1], (Box{133, 13, 66, 20}));
    EXPECT_EQ(frames.checkboxes.size(), 6U);
}

TEST(FilterBarLayout, the_voicetracks_button_and_its_counter_stand_right) {
    auto content = sixFilters();
    for (const bool shown : {false, true}) {
        content.counterShown = shown;
        const auto frames = filterBarFrames(1200, content);
        EXPECT_EQ(frames.voicetracksOnlyButton, (Box{1000, 9, 180, 28}));
        EXPECT_EQ(frames.vtCounterLabel, (Box{840, 14, 150, 18}));
        EXPECT_FALSE(frames.counterBelowButton);
    }
}

TEST(FilterBarLayout, in_the_least_window_nothing_runs_into_anything) {
    auto content = sixFilters();
    for (const bool shown : {false, true}) {
        content.counterShown = shown;
        const auto frames = filterBarFrames(820, content);
        EXPECT_LE(frames.checkboxes.back().right() + 8, frames.voicetracksOnlyButton.x);
        for (std::size_t i = 1; i < frames.swatches.size(); ++i)
            EXPECT_GT(frames.swatches[i].x, frames.checkboxes[i - 1].right() + 8);
    }
}

TEST(FilterBarLayout, the_counter_goes_below_its_button_where_it_would_lie_on_the_filters) {
    auto content = sixFilters();
    content.counterShown = true;
    const auto frames = filterBarFrames(820, content);
    EXPECT_TRUE(frames.counterBelowButton);
    EXPECT_GE(frames.vtCounterLabel.y, frames.voicetracksOnlyButton.bottom());
    EXPECT_LE(frames.vtCounterLabel.bottom(), kFilterBarHeight);
    EXPECT_GE(frames.voicetracksOnlyButton.y, 0);
    content.counterShown = false;
    EXPECT_EQ(filterBarFrames(820, content).voicetracksOnlyButton, (Box{620, 9, 180, 28}));
}

TEST(FilterBarLayout, filters_keep_some_distance_even_where_there_is_no_room) {
    const auto frames = filterBarFrames(300, sixFilters());
    for (std::size_t i = 1; i < frames.swatches.size(); ++i)
        EXPECT_EQ(frames.swatches[i].x, frames.checkboxes[i - 1].right() + 4);
    EXPECT_TRUE(filterBarFrames(300, {}).swatches.empty());
}

}  // namespace
}  // namespace sonavault::testing
