#include "review/DayNavigation.h"

#include <gtest/gtest.h>

namespace sonavault::testing {
namespace {

class FakeDayNavigationHost final : public DayNavigationHost {
  public:
    DaySeconds playheadSec() const override { return playhead; }
    const std::vector<Marker>& allMarkers() const override { return markers; }
    void jumpTo(DaySeconds position) override { jumps.push_back(position.value); }

    DaySeconds playhead;
    std::vector<Marker> markers;
    std::vector<double> jumps;
};

class DayNavigationTest : public ::testing::Test {
  protected:
    void haveMarkers(std::initializer_list<double> times) {
        for (const double time : times) host_.markers.push_back({.type = "vt", .timeSec = time});
    }
    /// Where the jump from `playhead` led; nothing when it led nowhere.
    std::optional<double> markerFromHere(double playhead, int direction) {
        host_.playhead = {playhead};
        host_.jumps.clear();
        navigation_.jumpToMarker(direction);
        if (host_.jumps.empty()) return std::nullopt;
        return host_.jumps.front();
    }

    FakeDayNavigationHost host_;
    DayNavigation navigation_{host_};
};

TEST_F(DayNavigationTest, finds_the_next_and_the_previous_marker_in_any_order_of_the_list) {
    haveMarkers({300, 100, 200, 400});
    EXPECT_EQ(markerFromHere(150, 1), 200);
    EXPECT_EQ(markerFromHere(350, -1), 300);
}

TEST_F(DayNavigationTest, passes_over_a_marker_within_half_a_second) {
    haveMarkers({100, 200});
    EXPECT_EQ(markerFromHere(199.6, 1), std::nullopt);
    EXPECT_EQ(markerFromHere(199.5, 1), std::nullopt);
    EXPECT_EQ(markerFromHere(199.4, 1), 200);
    EXPECT_EQ(markerFromHere(200.4, -1), 100);
    EXPECT_EQ(markerFromHere(200.5, -1), 100);
    EXPECT_EQ(markerFromHere(200.6, -1), 200);
}

TEST_F(DayNavigationTest, markers_of_the_same_second_are_one_stop) {
    haveMarkers({100, 200, 200, 300});
    EXPECT_EQ(markerFromHere(100, 1), 200);
    EXPECT_EQ(markerFromHere(200, 1), 300);
}

TEST_F(DayNavigationTest, stays_where_there_is_no_marker) {
    EXPECT_EQ(markerFromHere(100, 1), std::nullopt);
    haveMarkers({0, 100});
    EXPECT_EQ(markerFromHere(0, -1), std::nullopt);
}

TEST_F(DayNavigationTest, takes_any_direction_but_an_upward_one_for_back) {
    haveMarkers({100, 200});
    EXPECT_EQ(markerFromHere(150, 0), 100);
}

TEST_F(DayNavigationTest, goes_to_full_hours_away_from_the_one_under_the_playhead) {
    host_.playhead = {10.5 * 3600};
    navigation_.jumpRelativeHour(-1);
    navigation_.jumpRelativeHour(1);
    host_.playhead = {1800};
    navigation_.jumpRelativeHour(-1);
    host_.playhead = {23.5 * 3600};
    navigation_.jumpRelativeHour(1);
    EXPECT_EQ(host_.jumps, (std::vector<double>{9 * 3600, 11 * 3600, -3600, 86400}));
}

TEST_F(DayNavigationTest, goes_some_seconds_from_the_playhead) {
    host_.playhead = {100};
    navigation_.jumpRelative(-10);
    navigation_.jumpRelative(10);
    EXPECT_EQ(host_.jumps, (std::vector<double>{90, 110}));
}

}  // namespace
}  // namespace sonavault::testing
