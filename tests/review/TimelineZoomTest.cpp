#include "review/TimelineZoom.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "review/ScrollAxis.h"
#include "review/TimelineMapping.h"
#include "review/TimelineRows.h"

namespace sonavault::testing {
namespace {

/// A window of 1000 points that lays itself out as wide as the factor asks.
class Window final : public TimelineZoomHost {
  public:
    ZoomExtent zoomExtent() const override { return {width, width, kClip}; }
    double scrollX() const override { return scroll; }
    void scrollTo(double x) override {
        scroll = x;
        ++scrolls;
    }
    DaySeconds playheadSec() const override { return playhead; }
    void layOutLogsTab() override {
        ++layouts;
        width = contentWidth(kClip, zoom->zoomMult());
    }
    void showZoomPreset(std::optional<std::size_t> preset) override { shown = preset; }

    /// The moment at a place of the window.
    double secondAtScreen(double x) const { return secAt(scroll + x, width).value; }

    static constexpr double kClip = 1000;
    const TimelineZoom* zoom = nullptr;
    double width = kClip;
    double scroll = 0;
    DaySeconds playhead;
    std::optional<std::size_t> shown = 0;
    int layouts = 0;
    int scrolls = 0;
};

class TimelineZoomTest : public ::testing::Test {
  protected:
    TimelineZoomTest() { window_.zoom = &zoom_; }

    /// A swipe that leads from the factor that is to `factor`, with the pointer at a place of the
    /// window.
    void zoomTo(double factor, double screenX = 500) {
        swipe(std::log(factor / zoom_.zoomMult()) / 0.005, screenX);
    }
    void swipe(double deltaY, double screenX = 500) {
        zoom_.performZoom(deltaY, window_.scroll + screenX);
    }

    Window window_;
    TimelineZoom zoom_{window_};
};

TEST_F(TimelineZoomTest, begins_with_the_whole_day) {
    EXPECT_EQ(zoom_.zoomMult(), 1);
    EXPECT_EQ(zoom_.activePreset(), 0U);
}

TEST_F(TimelineZoomTest, a_swipe_of_100_points_zooms_by_the_root_of_e) {
    swipe(100);
    EXPECT_DOUBLE_EQ(zoom_.zoomMult(), std::exp(0.5));
    EXPECT_EQ(window_.shown, std::nullopt);
    EXPECT_EQ(zoom_.activePreset(), std::nullopt);
    EXPECT_EQ(window_.layouts, 1);
}

TEST_F(TimelineZoomTest, ends_at_exactly_720_and_says_so) {
    zoomTo(719.9);
    EXPECT_EQ(window_.shown, std::nullopt);
    swipe(500);
    EXPECT_EQ(zoom_.zoomMult(), 720);
    EXPECT_EQ(window_.shown, 4U);
}

TEST_F(TimelineZoomTest, does_not_even_lay_out_beyond_the_ends) {
    swipe(-100);
    EXPECT_EQ(window_.layouts, 0);
    swipe(1e9);
    EXPECT_EQ(zoom_.zoomMult(), 720);
    const int layouts = window_.layouts;
    const int scrolls = window_.scrolls;
    swipe(100);
    EXPECT_EQ(window_.layouts, layouts);
    EXPECT_EQ(window_.scrolls, scrolls);
}

TEST_F(TimelineZoomTest, is_not_moved_by_a_swipe_that_is_no_number) {
    swipe(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(zoom_.zoomMult(), 1);
    EXPECT_EQ(window_.layouts, 0);
}

TEST_F(TimelineZoomTest, a_factor_near_a_preset_lights_its_button) {
    zoomTo(4.005);
    EXPECT_EQ(window_.shown, 1U);
    zoomTo(4.02);
    EXPECT_EQ(window_.shown, std::nullopt);
    EXPECT_EQ(presetAt(3.995), 1U);
    EXPECT_EQ(presetAt(143.995), 3U);
    EXPECT_EQ(presetAt(1440), std::nullopt);
}

TEST_F(TimelineZoomTest, keeps_noon_under_the_pointer) {
    for (const double factor : {2.0, 30.0, 500.0, 720.0, 90.0, 1.5}) {
        zoomTo(factor, 500);
        EXPECT_NEAR(window_.secondAtScreen(500), 43200, 1e-6) << factor;
    }
}

TEST_F(TimelineZoomTest, keeps_any_moment_under_the_pointer_where_the_ends_allow_it) {
    zoomTo(100, 400);
    const double moment = window_.secondAtScreen(700);
    zoomTo(130, 700);
    EXPECT_NEAR(window_.secondAtScreen(700), moment, 1e-6);
}

TEST_F(TimelineZoomTest, comes_out_at_the_left_end_when_zooming_out) {
    zoomTo(50, 20);
    EXPECT_GT(window_.scroll, 0);
    zoomTo(1, 20);
    EXPECT_EQ(window_.scroll, 0);
    EXPECT_EQ(zoom_.zoomMult(), 1);
    EXPECT_EQ(window_.shown, 0U);
}

TEST_F(TimelineZoomTest, stops_at_the_right_end_of_the_content) {
    zoomTo(4, 1000);
    EXPECT_NEAR(window_.scroll, 3000, 1e-6);
    zoomTo(2, 0);
    EXPECT_NEAR(window_.scroll, 1000, 1e-6);
}

TEST_F(TimelineZoomTest, a_preset_puts_the_playhead_in_the_middle) {
    window_.playhead = {43200};
    zoom_.zoomPresetClicked(2);
    EXPECT_EQ(zoom_.zoomMult(), 24);
    EXPECT_EQ(window_.shown, 2U);
    EXPECT_EQ(window_.layouts, 1);
    EXPECT_EQ(window_.scroll, 12000 - 500);
}

TEST_F(TimelineZoomTest, a_preset_stops_at_the_ends_of_the_content) {
    window_.playhead = {60};
    zoom_.zoomPresetClicked(2);
    EXPECT_EQ(window_.scroll, 0);
    window_.playhead = {86399};
    zoom_.zoomPresetClicked(4);
    EXPECT_EQ(window_.scroll, 720000 - 1000);
    zoom_.zoomPresetClicked(0);
    EXPECT_EQ(window_.scroll, 0);
}

TEST_F(TimelineZoomTest, knows_no_sixth_preset) {
    zoom_.zoomPresetClicked(5);
    EXPECT_EQ(zoom_.zoomMult(), 1);
    EXPECT_EQ(window_.layouts, 0);
}

TEST(ZoomPresets, bear_their_factor_as_identifier) {
    for (const ZoomPreset& each : kZoomPresets)
        EXPECT_EQ(std::stod(std::string(each.identifier)), each.factor) << each.title;
}

TEST(ScrollXKeeping, takes_the_width_of_the_content_before_the_first_layout) {
    EXPECT_EQ(scrollXKeeping({43200}, 100, {.contentWidth = 2000, .clipWidth = 500}), 900);
}

ScrollEvent begun(double dx, double dy) {
    return {.deltaX = dx, .deltaY = dy, .phase = ScrollPhase::began};
}
ScrollEvent going(double dx, double dy) {
    return {.deltaX = dx, .deltaY = dy, .phase = ScrollPhase::changed};
}
constexpr ScrollEvent kFingersGone{.phase = ScrollPhase::ended};

TEST(ScrollAxis, a_tie_zooms_for_the_whole_gesture) {
    ScrollAxis axis;
    EXPECT_EQ(axis.modeOf(begun(3, 3)), ScrollMode::zoom);
    EXPECT_EQ(axis.modeOf(going(90, 1)), ScrollMode::zoom);
    EXPECT_EQ(axis.modeOf(going(-90, 0)), ScrollMode::zoom);
}

TEST(ScrollAxis, a_gesture_that_begins_sideways_pans_however_it_goes_on) {
    ScrollAxis axis;
    EXPECT_EQ(axis.modeOf(begun(-4, 3)), ScrollMode::pan);
    EXPECT_EQ(axis.modeOf(going(0, 50)), ScrollMode::pan);
}

TEST(ScrollAxis, a_beginning_without_movement_leaves_the_axis_to_the_first_that_moves) {
    ScrollAxis axis;
    axis.modeOf(begun(0, 0));
    EXPECT_EQ(axis.lockedScrollMode(), std::nullopt);
    axis.modeOf(going(0, 0));
    EXPECT_EQ(axis.lockedScrollMode(), std::nullopt);
    EXPECT_EQ(axis.modeOf(going(-3, 2)), ScrollMode::pan);
    EXPECT_EQ(axis.modeOf(going(0, 50)), ScrollMode::pan);
    EXPECT_EQ(axis.modeOf(kFingersGone), ScrollMode::pan);

    axis.modeOf(begun(0, 0));
    EXPECT_EQ(axis.modeOf(going(2, 2)), ScrollMode::zoom);
    EXPECT_EQ(axis.modeOf(going(90, 1)), ScrollMode::zoom);
}

TEST(ScrollAxis, a_gesture_without_movement_leaves_nothing_to_the_next) {
    ScrollAxis axis;
    axis.modeOf(begun(0, 0));
    axis.modeOf(kFingersGone);
    EXPECT_EQ(axis.modeOf({.deltaX = 40}), ScrollMode::pan);
    EXPECT_EQ(axis.lockedScrollMode(), std::nullopt);
    EXPECT_EQ(axis.modeOf({.deltaY = 40}), ScrollMode::zoom);
}

TEST(ScrollAxis, a_beginning_forgets_the_axis_of_a_gesture_whose_end_was_lost) {
    ScrollAxis axis;
    axis.modeOf(begun(9, 0));
    axis.modeOf(begun(0, 0));
    EXPECT_EQ(axis.modeOf(going(1, 9)), ScrollMode::zoom);
}

TEST(ScrollAxis, a_wheel_without_phases_is_judged_event_by_event) {
    ScrollAxis axis;
    EXPECT_EQ(axis.modeOf({.deltaY = 40}), ScrollMode::zoom);
    EXPECT_EQ(axis.modeOf({.deltaX = 40}), ScrollMode::pan);
    EXPECT_EQ(axis.modeOf({.deltaY = -40}), ScrollMode::zoom);
    EXPECT_EQ(axis.lockedScrollMode(), std::nullopt);
}

TEST(ScrollAxis, a_new_gesture_is_judged_anew) {
    ScrollAxis axis;
    axis.modeOf(begun(9, 0));
    EXPECT_EQ(axis.modeOf(kFingersGone), ScrollMode::pan);
    EXPECT_EQ(axis.lockedScrollMode(), std::nullopt);
    EXPECT_EQ(axis.modeOf(begun(0, 9)), ScrollMode::zoom);
}

TEST(ScrollAxis, momentum_that_comes_with_the_end_keeps_the_axis_until_it_is_spent) {
    ScrollAxis axis;
    axis.modeOf(begun(9, 0));
    axis.modeOf({.phase = ScrollPhase::ended, .momentumPhase = ScrollPhase::began});
    EXPECT_EQ(axis.modeOf({.deltaY = 9, .momentumPhase = ScrollPhase::changed}), ScrollMode::pan);
    EXPECT_EQ(axis.modeOf({.momentumPhase = ScrollPhase::ended}), ScrollMode::pan);
    EXPECT_EQ(axis.lockedScrollMode(), std::nullopt);
}

TEST(ScrollAxis, momentum_after_the_lock_has_gone_is_judged_event_by_event) {
    ScrollAxis axis;
    axis.modeOf(begun(9, 0));
    axis.modeOf(kFingersGone);
    EXPECT_EQ(axis.modeOf({.deltaY = 9, .momentumPhase = ScrollPhase::changed}), ScrollMode::zoom);
}

}  // namespace
}  // namespace sonavault::testing
