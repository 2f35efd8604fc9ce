#include "review/LevelScale.h"

#include <gtest/gtest.h>

#include <limits>

namespace sonavault::testing {
namespace {

constexpr float kNoNumber = std::numeric_limits<float>::quiet_NaN();

/// What is lit: all that is drawn over the three unlit zones.
std::vector<MeterFill> litAt(float level) {
    auto fills = meterFills(level);
    fills.erase(fills.begin(), fills.begin() + 3);
    return fills;
}

TEST(MeterFraction, is_linear_in_decibels) {
    EXPECT_EQ(MeterScale::fraction(-60), 0);
    EXPECT_EQ(MeterScale::fraction(-30), 0.5);
    EXPECT_EQ(MeterScale::fraction(-24), 0.6);
    EXPECT_EQ(MeterScale::fraction(-18), 0.7);
    EXPECT_EQ(MeterScale::fraction(0), 1);
}

TEST(MeterFraction, stays_on_the_scale) {
    EXPECT_EQ(MeterScale::fraction(3), 1);
    EXPECT_EQ(MeterScale::fraction(-120), 0);
    EXPECT_EQ(MeterScale::fraction(std::numeric_limits<float>::infinity()), 1);
    EXPECT_EQ(MeterScale::fraction(-std::numeric_limits<float>::infinity()), 0);
    EXPECT_EQ(MeterScale::fraction(kNoNumber), 0);
}

TEST(MeterFills, are_three_unlit_zones_without_sound) {
    const std::vector<MeterFill> idle{
        {0, 0.6, rgb(76, 92, 107)}, {0.6, 0.7, rgb(110, 99, 89)}, {0.7, 1, rgb(107, 99, 128)}};
    for (const float level : {-160.0F, -120.0F, -60.0F}) EXPECT_EQ(meterFills(level), idle);
}

TEST(MeterFills, light_the_lowest_zone_up_to_its_end) {
    EXPECT_EQ(litAt(-30), (std::vector<MeterFill>{{0, 0.5, rgb(96, 137, 171)}}));
    EXPECT_EQ(litAt(-24), (std::vector<MeterFill>{{0, 0.6, rgb(96, 137, 171)}}));
}

TEST(MeterFills, light_the_middle_zone_up_to_its_end) {
    EXPECT_EQ(litAt(-18), (std::vector<MeterFill>{{0, 0.6, rgb(96, 137, 171)},
                                                  {0.6, 0.7, rgb(168, 144, 120)}}));
}

TEST(MeterFills, light_all_at_full_scale_and_above) {
    const std::vector<MeterFill> all{
        {0, 0.6, rgb(96, 137, 171)}, {0.6, 0.7, rgb(168, 144, 120)}, {0.7, 1, rgb(152, 134, 197)}};
    EXPECT_EQ(litAt(0), all);
    EXPECT_EQ(litAt(3), all);
}

TEST(MeterChange, is_visible_above_a_twentieth_of_a_decibel) {
    EXPECT_FALSE(isVisibleChange(-20.00F, -20.04F));
    EXPECT_TRUE(isVisibleChange(-20.00F, -20.06F));
    EXPECT_TRUE(isVisibleChange(-20.00F, -19.94F));
}

TEST(ClusterLights, go_on_at_their_limits) {
    EXPECT_EQ(clusterLights(-160), (ClusterLights{false, false, false}));
    EXPECT_EQ(clusterLights(-60.01F), (ClusterLights{false, false, false}));
    EXPECT_EQ(clusterLights(-60), (ClusterLights{true, false, false}));
    EXPECT_EQ(clusterLights(-24.01F), (ClusterLights{true, false, false}));
    EXPECT_EQ(clusterLights(-24), (ClusterLights{true, true, false}));
    EXPECT_EQ(clusterLights(-18.01F), (ClusterLights{true, true, false}));
    EXPECT_EQ(clusterLights(-18), (ClusterLights{true, true, true}));
}

TEST(ClusterLights, are_off_for_what_is_no_level) {
    EXPECT_EQ(clusterLights(kNoNumber), (ClusterLights{false, false, false}));
}

}  // namespace
}  // namespace sonavault::testing
