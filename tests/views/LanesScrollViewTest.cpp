#include "views/LanesScrollView.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QtTest/qtestspontaneevent.h>
#include <QApplication>
#include <QScrollBar>

#include <cmath>

#include "review/TimelineMapping.h"
#include "views/OverlayScrollBar.h"
#include "views/Pointer.h"
#include "views/TimelineWindow.h"

namespace sonavault::testing {
namespace {

using ::testing::IsEmpty;

class LanesScrollViewTest : public ::testing::Test {
  protected:
    static constexpr QSize kSize{1000, 682};
    static constexpr QPointF kMiddle{500, 300};

    /// Which moment of the day stands at `x` of what is seen.
    double momentAt(double x) {
        return secAt(x + window_.view.scrollX(), window_.inner().timelineWidth()).value;
    }
    double factor() const { return window_.zoom.zoomMult(); }
    double scrollX() const { return window_.view.scrollX(); }

    /// The parts that lie over the content.
    OverlayScrollBar& thumb(Qt::Orientation orientation) {
        const auto all =
            window_.view.viewport()->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
        for (QWidget* each : all)
            if (auto* found = dynamic_cast<OverlayScrollBar*>(each))
                if (found->accessibleName().startsWith(
                        QLatin1String(orientation == Qt::Horizontal ? "Horizontal" : "Vertical")))
                    return *found;
        throw std::logic_error("no such scroll bar");
    }

    void takePointerAway() {
        QHoverEvent leave(QEvent::HoverLeave, {-1, -1}, {-1, -1}, {500, 670});
        QCoreApplication::sendEvent(window_.view.viewport(), &leave);
    }

    /// By a notch, and as a window system tells it: to whatever lies uppermost.
    void turnWheelAt(QPoint place) {
        QWidget& viewport = *window_.view.viewport();
        QWidget& uppermost = *viewport.childAt(place);
        QWheelEvent event(uppermost.mapFrom(&viewport, QPointF(place)),
                          viewport.mapToGlobal(QPointF(place)), {}, {0, 120}, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QSpontaneKeyEvent::setSpontaneous(&event);
        qApp->notify(&uppermost, &event);
    }

    TimelineWindow window_{kSize};
    Pointer pointer_{*window_.view.viewport()};
};

TEST_F(LanesScrollViewTest, the_whole_view_is_for_the_content) {
    window_.haveZoom(2);
    EXPECT_EQ(window_.view.clipSize(), (Size{1000, 682}));
    EXPECT_EQ(window_.view.extent().clipWidth, 1000);
    EXPECT_EQ(window_.view.extent().timelineWidth, 24000);
    EXPECT_EQ(window_.view.extent().contentWidth, 24000);
}

TEST_F(LanesScrollViewTest, a_swipe_up_zooms_in_exponentially) {
    pointer_.swipe(kMiddle, {.pixels = {0, 100}});
    EXPECT_NEAR(factor(), std::exp(0.5), 1e-12);
    EXPECT_FALSE(window_.zoom.activePreset());
}

TEST_F(LanesScrollViewTest, a_wheels_notch_counts_forty_points) {
    pointer_.swipe(kMiddle, {.angle = {0, 120}});
    EXPECT_NEAR(factor(), std::exp(0.2), 1e-12);
    pointer_.swipe(kMiddle, {.angle = {0, -60}});
    EXPECT_NEAR(factor(), std::exp(0.1), 1e-12);
}

TEST_F(LanesScrollViewTest, pixels_count_as_they_are_and_not_with_the_notches) {
    pointer_.swipe(kMiddle, {.pixels = {0, 10}, .angle = {0, 120}});
    EXPECT_NEAR(factor(), std::exp(0.05), 1e-12);
}

TEST_F(LanesScrollViewTest, the_moment_under_the_pointer_stays_there) {
    for (int step = 0; step < 60; ++step) {
        pointer_.swipe(kMiddle, {.pixels = {0, 13}});
        ASSERT_NEAR(momentAt(500), 43200, 1e-6);
    }
    EXPECT_GT(factor(), 40);
    for (int step = 0; step < 30; ++step) {
        pointer_.swipe(kMiddle, {.pixels = {0, -13}});
        ASSERT_NEAR(momentAt(500), 43200, 1e-6);
    }
    // What is drawn is at most half a point from it.
    EXPECT_NEAR(-window_.inner().x(), scrollX(), 0.5);
}

TEST_F(LanesScrollViewTest, the_ends_of_the_day_stop_it) {
    pointer_.swipe({30, 300}, {.pixels = {0, 100}});
    pointer_.swipe({10, 300}, {.pixels = {0, -300}});
    EXPECT_EQ(factor(), 1);
    EXPECT_EQ(scrollX(), 0);
    EXPECT_EQ(window_.inner().x(), 0);

    pointer_.swipe({1000, 300}, {.pixels = {0, 100}});
    EXPECT_NEAR(momentAt(1000), kSecondsInDay, 1e-6);
}

TEST_F(LanesScrollViewTest, at_the_limit_nothing_is_laid_out) {
    window_.haveZoom(4);
    const int layouts = window_.layouts;
    pointer_.swipe(kMiddle, {.pixels = {0, 80}});
    EXPECT_EQ(factor(), 720);
    EXPECT_EQ(window_.layouts, layouts);
}

TEST_F(LanesScrollViewTest, a_sideways_swipe_pans_by_its_points) {
    window_.haveZoom(2);
    window_.view.scrollTo(5000);
    pointer_.swipe(kMiddle, {.pixels = {-70, 3}});
    EXPECT_EQ(scrollX(), 5070);
    pointer_.swipe(kMiddle, {.pixels = {100, 3}});
    EXPECT_EQ(scrollX(), 4970);
    EXPECT_EQ(window_.inner().x(), -4970);
    EXPECT_EQ(factor(), 24);
}

TEST_F(LanesScrollViewTest, panning_ends_at_the_ends_of_the_day) {
    window_.haveZoom(1);
    window_.view.scrollTo(20);
    pointer_.swipe(kMiddle, {.pixels = {70, 0}});
    EXPECT_EQ(scrollX(), 0);
    pointer_.swipe(kMiddle, {.pixels = {-7000, 0}});
    EXPECT_EQ(scrollX(), 3000);
}

TEST_F(LanesScrollViewTest, shift_with_the_wheel_pans) {
    window_.haveZoom(2);
    window_.view.scrollTo(5000);
    pointer_.swipe(kMiddle, {.angle = {0, -120}, .modifiers = Qt::ShiftModifier});
    EXPECT_EQ(scrollX(), 5040);
    EXPECT_EQ(factor(), 24);
}

TEST_F(LanesScrollViewTest, a_sideways_wheel_pans) {
    window_.haveZoom(2);
    window_.view.scrollTo(5000);
    pointer_.swipe(kMiddle, {.angle = {120, 0}});
    EXPECT_EQ(scrollX(), 4960);
}

TEST_F(LanesScrollViewTest, a_gesture_that_begins_even_zooms_to_its_end) {
    window_.haveZoom(2);
    window_.view.scrollTo(5000);
    pointer_.swipe(kMiddle, {.pixels = {2, 2}, .phase = Qt::ScrollBegin});
    const double begun = factor();
    pointer_.swipe(kMiddle, {.pixels = {50, 2}, .phase = Qt::ScrollUpdate});
    EXPECT_NEAR(factor(), begun * std::exp(0.01), 1e-9);
    pointer_.swipe(kMiddle, {.pixels = {50, -2}, .phase = Qt::ScrollMomentum});
    EXPECT_NEAR(factor(), begun, 1e-9);
    pointer_.swipe(kMiddle, {.phase = Qt::ScrollEnd});
    const double at = scrollX();
    pointer_.swipe(kMiddle, {.pixels = {50, 2}});
    EXPECT_EQ(scrollX(), at - 50);
}

TEST_F(LanesScrollViewTest, a_gesture_that_begins_sideways_never_zooms) {
    window_.haveZoom(2);
    window_.view.scrollTo(5000);
    pointer_.swipe(kMiddle, {.pixels = {-3, 2}, .phase = Qt::ScrollBegin});
    pointer_.swipe(kMiddle, {.pixels = {0, 40}, .phase = Qt::ScrollUpdate});
    EXPECT_EQ(factor(), 24);
    EXPECT_EQ(scrollX(), 5003);
    pointer_.swipe(kMiddle, {.phase = Qt::ScrollEnd});
    pointer_.swipe(kMiddle, {.pixels = {0, 40}});
    EXPECT_GT(factor(), 24);
}

TEST_F(LanesScrollViewTest, a_gesture_whose_beginning_has_no_direction_goes_where_it_first_moves) {
    window_.haveZoom(2);
    window_.view.scrollTo(5000);
    pointer_.swipe(kMiddle, {.phase = Qt::ScrollBegin});
    pointer_.swipe(kMiddle, {.pixels = {-3, 2}, .phase = Qt::ScrollUpdate});
    EXPECT_EQ(scrollX(), 5003);
    pointer_.swipe(kMiddle, {.pixels = {-2, 40}, .phase = Qt::ScrollUpdate});
    EXPECT_EQ(scrollX(), 5005);
    EXPECT_EQ(factor(), 24);
    pointer_.swipe(kMiddle, {.phase = Qt::ScrollEnd});

    pointer_.swipe(kMiddle, {.phase = Qt::ScrollBegin});
    pointer_.swipe(kMiddle, {.pixels = {2, 10}, .phase = Qt::ScrollUpdate});
    pointer_.swipe(kMiddle, {.pixels = {90, 10}, .phase = Qt::ScrollUpdate});
    EXPECT_NEAR(factor(), 24 * std::exp(0.1), 1e-9);
}

TEST_F(LanesScrollViewTest, a_wheel_over_the_content_reaches_the_view) {
    turnWheelAt(kMiddle.toPoint());
    EXPECT_NEAR(factor(), std::exp(0.2), 1e-12);
}

TEST_F(LanesScrollViewTest, a_narrower_content_leaves_no_empty_ground) {
    window_.haveZoom(2);
    window_.view.scrollTo(23000);
    window_.zoom.zoomPresetClicked(1);
    window_.view.scrollTo(3000);
    window_.view.resize(800, 600);
    window_.layOutLogsTab();
    EXPECT_EQ(window_.inner().width(), 3200);
    EXPECT_LE(scrollX(), 2400);
    EXPECT_GE(window_.inner().x() + window_.inner().width(), 800);
}

TEST_F(LanesScrollViewTest, lanes_that_do_not_fit_scroll_and_a_zoom_goes_to_the_top) {
    window_.view.resize(1000, 180);
    window_.layOutLogsTab();
    EXPECT_EQ(window_.inner().height(), 6 * 32 + 50 + 32);
    QScrollBar& bar = *window_.view.verticalScrollBar();
    EXPECT_EQ(bar.maximum(), 274 - 180);
    EXPECT_EQ(window_.view.clipSize(), (Size{1000, 180}));

    bar.setValue(50);
    EXPECT_EQ(window_.inner().y(), -50);
    EXPECT_TRUE(thumb(Qt::Vertical).isVisible());
    window_.view.scrollTo(0);
    EXPECT_EQ(window_.inner().y(), 0);
}

TEST_F(LanesScrollViewTest, can_be_scrolled_before_it_is_shown) {
    window_.view.hide();
    window_.zoom.zoomPresetClicked(2);
    window_.view.scrollTo(5000.25);
    EXPECT_EQ(scrollX(), 5000.25);
    window_.view.show();
    EXPECT_EQ(scrollX(), 5000.25);
    EXPECT_EQ(window_.inner().x(), -5000);
}

TEST_F(LanesScrollViewTest, taking_the_keyboard_does_not_scroll) {
    window_.haveZoom(2);
    window_.view.scrollTo(5000);
    window_.view.activateWindow();
    window_.inner().setFocus(Qt::TabFocusReason);
    QKeyEvent tab(QEvent::KeyPress, Qt::Key_Tab, Qt::NoModifier);
    QCoreApplication::sendEvent(&window_.inner(), &tab);
    EXPECT_EQ(scrollX(), 5000);
}

TEST_F(LanesScrollViewTest, a_day_seen_whole_has_no_scroll_bar) {
    pointer_.swipe(kMiddle, {.pixels = {-50, 0}});
    Pointer(window_.inner()).move({500, 675});
    EXPECT_FALSE(thumb(Qt::Horizontal).isVisible());
    EXPECT_FALSE(thumb(Qt::Vertical).isVisible());
}

TEST_F(LanesScrollViewTest, a_scroll_bar_shows_for_a_while_when_something_moves) {
    window_.haveZoom(1);
    EXPECT_TRUE(thumb(Qt::Horizontal).isVisible());
    window_.timers.pass(1);
    EXPECT_FALSE(thumb(Qt::Horizontal).isVisible());

    pointer_.swipe(kMiddle, {.pixels = {-50, 0}});
    EXPECT_TRUE(thumb(Qt::Horizontal).isVisible());
    EXPECT_FALSE(thumb(Qt::Vertical).isVisible());
    window_.timers.pass(1);
    EXPECT_FALSE(thumb(Qt::Horizontal).isVisible());
}

TEST_F(LanesScrollViewTest, a_scroll_bar_shows_while_the_pointer_is_near) {
    window_.haveZoom(1);
    window_.timers.pass(1);
    Pointer pointer(window_.inner());
    pointer.move({500, 640});
    EXPECT_FALSE(thumb(Qt::Horizontal).isVisible());
    pointer.move({500, 670});
    EXPECT_TRUE(thumb(Qt::Horizontal).isVisible());
    takePointerAway();
    EXPECT_TRUE(thumb(Qt::Horizontal).isVisible());
    window_.timers.pass(1);
    EXPECT_FALSE(thumb(Qt::Horizontal).isVisible());
}

TEST_F(LanesScrollViewTest, a_scroll_bars_handle_stands_for_what_is_seen_and_can_be_dragged) {
    window_.haveZoom(1);
    window_.view.scrollTo(0);
    OverlayScrollBar& handle = thumb(Qt::Horizontal);
    EXPECT_NEAR(handle.width(), 250, 6);
    EXPECT_EQ(handle.geometry().bottom(), 681);
    EXPECT_LT(handle.x(), 5);

    Pointer pointer(handle);
    pointer.press({100, 6});
    pointer.move({100 + 370, 6});
    EXPECT_NEAR(scrollX(), 1500, 20);
    pointer.move({5000, 6});
    EXPECT_EQ(scrollX(), 3000);
    EXPECT_EQ(handle.geometry().right(), 999);
    window_.timers.pass(5);
    EXPECT_TRUE(handle.isVisible());
    pointer.release({100, 6});
    takePointerAway();
    window_.timers.pass(1);
    EXPECT_FALSE(handle.isVisible());
    EXPECT_THAT(window_.jumps, IsEmpty());
}

TEST_F(LanesScrollViewTest, a_scroll_bar_stays_while_the_pointer_is_on_its_handle) {
    window_.haveZoom(1);
    OverlayScrollBar& handle = thumb(Qt::Horizontal);
    Pointer(handle).move({10, 6});
    window_.timers.pass(5);
    EXPECT_TRUE(handle.isVisible());
    takePointerAway();
    window_.timers.pass(1);
    EXPECT_FALSE(handle.isVisible());
}

TEST_F(LanesScrollViewTest, a_wheel_over_the_handle_zooms_too) {
    window_.haveZoom(1);
    turnWheelAt(thumb(Qt::Horizontal).geometry().center());
    EXPECT_NEAR(factor(), 4 * std::exp(0.2), 1e-9);
}

}  // namespace
}  // namespace sonavault::testing
