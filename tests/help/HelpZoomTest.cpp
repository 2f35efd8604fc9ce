#include "help/HelpZoom.h"

#include <gtest/gtest.h>

namespace sonavault::testing {
namespace {

TEST(HelpZoom, goes_in_steps_of_a_tenth) {
    HelpZoom zoom;
    EXPECT_EQ(zoom.zoomLevel, 1.0);
    EXPECT_TRUE(zoom.follow(U'+'));
    EXPECT_EQ(zoom.zoomLevel, 1.0 + 0.1);
    EXPECT_TRUE(zoom.follow(U'-'));
    EXPECT_TRUE(zoom.follow(U'-'));
    EXPECT_EQ(zoom.zoomLevel, 1.0 + 0.1 - 0.1 - 0.1);
}

TEST(HelpZoom, needs_no_shift_to_zoom_in) {
    HelpZoom plus;
    HelpZoom equals;
    plus.follow(U'+');
    equals.follow(U'=');
    EXPECT_EQ(plus.zoomLevel, equals.zoomLevel);
}

TEST(HelpZoom, stays_at_its_limits) {
    HelpZoom zoom{3.0};
    EXPECT_TRUE(zoom.follow(U'+'));
    EXPECT_EQ(zoom.zoomLevel, 3.0);
    zoom = HelpZoom{0.5};
    EXPECT_TRUE(zoom.follow(U'-'));
    EXPECT_EQ(zoom.zoomLevel, 0.5);
}

TEST(HelpZoom, is_cut_off_at_half_after_ten_steps_down) {
    HelpZoom zoom;
    for (int i = 0; i < 10; ++i) zoom.follow(U'-');
    EXPECT_EQ(zoom.zoomLevel, 0.5);
    for (int i = 0; i < 40; ++i) zoom.follow(U'=');
    EXPECT_EQ(zoom.zoomLevel, 3.0);
}

TEST(HelpZoom, goes_back_to_one) {
    HelpZoom zoom{2.2};
    EXPECT_TRUE(zoom.follow(U'0'));
    EXPECT_EQ(zoom.zoomLevel, 1.0);
}

TEST(HelpZoom, knows_the_numbers_of_its_keys) {
    constexpr int kKeyF1 = 0x01000030;
    HelpZoom zoom;
    EXPECT_TRUE(zoom.followKey('='));
    EXPECT_EQ(zoom.zoomLevel, 1.0 + 0.1);
    for (const int key : {0, -1, int{'a'}, 0x80, kKeyF1}) EXPECT_FALSE(zoom.followKey(key));
    EXPECT_EQ(zoom.zoomLevel, 1.0 + 0.1);
}

TEST(HelpZoom, leaves_all_other_keys_alone) {
    HelpZoom zoom{1.5};
    for (const char32_t key : {U'1', U'a', U' ', U'\0', U'_'}) EXPECT_FALSE(zoom.follow(key));
    EXPECT_EQ(zoom.zoomLevel, 1.5);
}

}  // namespace
}  // namespace sonavault::testing
