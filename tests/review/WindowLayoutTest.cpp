#include "review/WindowLayout.h"

#include <gtest/gtest.h>

namespace sonavault::testing {
namespace {

TEST(WindowLayout, stacks_banner_tab_and_status_bar_without_a_gap) {
    const WindowLayout layout = layOutWindow({1480, 920});

    EXPECT_EQ(layout.banner, (Box{0, 0, 1480, 132}));
    EXPECT_EQ(layout.tab, (Box{0, 132, 1480, 748}));
    EXPECT_EQ(layout.statusBar, (Box{0, 880, 1480, 40}));
}

TEST(WindowLayout, lets_the_tab_bar_reach_one_point_into_the_tab) {
    for (const Size content : {Size{1480, 920}, Size{1100, 600}, Size{2560, 1440}}) {
        const WindowLayout layout = layOutWindow(content);
        EXPECT_EQ(layout.tabBar, (Box{content.width - 304, 93, 304, 40}));
        EXPECT_EQ(layout.tabBar.bottom(), layout.tab.y + 1);
    }
}

TEST(WindowLayout, leaves_an_empty_tab_in_a_window_too_low_for_one) {
    const WindowLayout layout = layOutWindow({300, 100});

    EXPECT_EQ(layout.tab.height, 0);
    EXPECT_EQ(layout.statusBar, (Box{0, 60, 300, 40}));
}

TEST(WindowLayout, places_what_the_banner_holds) {
    const BannerLayout layout = layOutBanner(1480);

    EXPECT_EQ(layout.logo, (Box{28, 22, 84, 84}));
    EXPECT_EQ(layout.title, (Box{130, 30, 400, 44}));
    EXPECT_EQ(layout.slogan, (Box{130, 78, 400, 22}));
    EXPECT_EQ(layout.helpButton, (Box{1430, 10, 30, 28}));
    EXPECT_EQ(layout.stroke, (Box{0, 131, 1480, 1}));
}

TEST(TabFrames, stand_side_by_side_at_the_right_end) {
    const std::vector<Box> frames = tabFrames(304, 2);

    ASSERT_EQ(frames.size(), 2U);
    EXPECT_EQ(frames[0], (Box{0, 1, 140, 38}));
    EXPECT_EQ(frames[1], (Box{140, 1, 140, 38}));
}

TEST(TabFrames, of_no_tabs_are_none) {
    EXPECT_TRUE(tabFrames(304, 0).empty());
}

TEST(TabFrames, give_a_shared_side_to_the_tab_on_the_right) {
    const std::vector<Box> frames = tabFrames(304, 2);

    EXPECT_EQ(tabAt(frames, {139.5, 20}), 0U);
    EXPECT_EQ(tabAt(frames, {140, 20}), 1U);
}

TEST(TabFrames, hold_no_point_beside_above_or_below_them) {
    const std::vector<Box> frames = tabFrames(304, 2);

    EXPECT_EQ(tabAt(frames, {280, 20}), std::nullopt);
    EXPECT_EQ(tabAt(frames, {20, 0.5}), std::nullopt);
    EXPECT_EQ(tabAt(frames, {20, 39}), std::nullopt);
}

TEST(StatusBarLayout, keeps_the_right_half_at_its_distance_from_the_edge) {
    for (const double width : {1100.0, 1480.0, 2560.0}) {
        const StatusBarLayout layout = layOutStatusBar(width);
        const double c = width - 64;
        EXPECT_EQ(layout.speaker, (Box{10, 5, 30, 30}));
        EXPECT_EQ(layout.text, (Box{48, 10, c - 16 - 600 - 48 - 12, 20}));
        EXPECT_EQ(layout.hint, (Box{c - 16 - 600, 10, 600, 20}));
        EXPECT_EQ(layout.settings, (Box{c, 5, 30, 30}));
        EXPECT_EQ(layout.connectionDot, (Box{width - 24, 14, 12, 12}));
    }
}

TEST(StatusBarLayout, takes_room_for_a_sentence_from_the_keys_in_a_narrow_window) {
    const StatusBarLayout layout = layOutStatusBar(800);

    EXPECT_EQ(layout.text.width, kLeastStatusTextWidth);
    EXPECT_EQ(layout.hint, (Box{260, 10, 460, 20}));
}

TEST(StatusBarLayout, never_lets_anything_overlap) {
    for (int width = 124; width <= 1100; ++width) {
        const StatusBarLayout layout = layOutStatusBar(width);
        ASSERT_GE(layout.text.width, 0) << width;
        ASSERT_GE(layout.hint.width, 0) << width;
        ASSERT_LE(layout.text.width > 0 ? layout.text.right() : 0, layout.settings.x) << width;
        ASSERT_LE(layout.text.width > 0 ? layout.text.right() : 0, layout.hint.x) << width;
        ASSERT_LE(layout.hint.right(), layout.settings.x) << width;
    }
}

}  // namespace
}  // namespace sonavault::testing
