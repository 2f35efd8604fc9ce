#include "views/LanesInnerView.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAccessible>
#include <QDialog>
#include <utility>

#include "views/Pointer.h"
#include "views/TimelineWindow.h"

namespace sonavault::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A timeline on which a point is 80 seconds of the day, and of which each lane is 100 points high.
class LanesInnerViewTest : public ::testing::Test {
  protected:
    static constexpr double kLane = 100;
    static constexpr double kBar = 6 * kLane;
    static constexpr double kAxis = kBar + kSummaryBarHeight;
    static constexpr QSize kSize{1080, static_cast<int>(kAxis + kTimeAxisHeight)};

    static double xOf(double seconds) { return seconds / 80; }
    static double laneTop(Lane lane) { return static_cast<double>(lane) * kLane; }
    static QPointF inLane(Lane lane, double seconds) {
        return {xOf(seconds), laneTop(lane) + kLane / 2};
    }
    static QPointF inBar(double x) { return {x, kBar + 25}; }

    LanesInnerView& view() { return window_.inner(); }
    /// A dialog opens in front of the window, and is closed again.
    static void showAlert() {
        QDialog alert;
        alert.setModal(true);
        alert.show();
    }
    Selection selection(std::size_t index) { return window_.chosen.selections().at(index); }
    std::size_t count() { return window_.chosen.selections().size(); }

    TimelineWindow window_{kSize};
    Pointer pointer_{window_.inner()};
};

TEST_F(LanesInnerViewTest, is_as_wide_as_the_zoom_makes_it) {
    EXPECT_EQ(view().size(), kSize);
    EXPECT_EQ(view().timelineWidth(), 1080);
    EXPECT_EQ(view().summaryBarFrame(), (Box{0, kBar, 1080, kSummaryBarHeight}));

    window_.haveZoom(4);

    EXPECT_EQ(view().width(), 1080 * 720);
    EXPECT_EQ(view().height(), kSize.height());
}

TEST_F(LanesInnerViewTest, a_click_on_a_lane_or_the_axis_seeks) {
    pointer_.click(inLane(Lane::mic, 8000));
    pointer_.click({300, kAxis + 5});
    EXPECT_THAT(window_.jumps, ElementsAre(8000, 24000));
}

TEST_F(LanesInnerViewTest, a_click_beyond_the_axis_seeks_to_its_end) {
    view().relayout({.width = 1080, .totalH = 682, .rightInset = 80});
    pointer_.click({1040, 50});
    EXPECT_THAT(window_.jumps, ElementsAre(kSecondsInDay));
}

TEST_F(LanesInnerViewTest, a_click_on_a_marker_seeks_to_its_moment) {
    window_.haveMarkers({{"break", 8000, "", 4000}, {"eas", 16000, "", 0}});
    pointer_.click(inLane(Lane::breaks, 11000));
    pointer_.click(inLane(Lane::eas, 16200));
    EXPECT_THAT(window_.jumps, ElementsAre(8000, 16000));
}

TEST_F(LanesInnerViewTest, a_click_goes_through_the_playhead) {
    window_.playhead = 8000;
    window_.haveMarkers({{"eas", 8000, "", 0}});
    pointer_.click(inLane(Lane::eas, 8080));
    pointer_.click(inLane(Lane::mic, 8000));
    EXPECT_THAT(window_.jumps, ElementsAre(8000, 8000));
}

TEST_F(LanesInnerViewTest, other_buttons_do_nothing) {
    pointer_.click(inLane(Lane::mic, 8000), Qt::RightButton);
    pointer_.click(inBar(100), Qt::RightButton);
    EXPECT_THAT(window_.jumps, IsEmpty());
}

TEST_F(LanesInnerViewTest, a_double_click_is_two_presses) {
    const QPointF at = inLane(Lane::mic, 8000);
    pointer_.click(at);
    QMouseEvent second(QEvent::MouseButtonDblClick, at, view().mapToGlobal(at), Qt::LeftButton,
                       Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&view(), &second);
    EXPECT_THAT(window_.jumps, ElementsAre(8000, 8000));
}

TEST_F(LanesInnerViewTest, a_marker_tells_what_it_is_and_bare_ground_does_not) {
    window_.haveMarkers({{"hour", 50400, "Top of hour", 0}});
    EXPECT_EQ(view().hintAt(inLane(Lane::hour, 50400).toPoint()),
              QStringLiteral("14:00:00  Hour:  Top of hour"));
    EXPECT_EQ(view().hintAt(inLane(Lane::hour, 51000).toPoint()), QString());
    EXPECT_EQ(view().hintAt(inLane(Lane::eas, 50400).toPoint()), QString());
    EXPECT_EQ(
        svHint(view()),
        QStringLiteral("Click to seek. Hover any marker for its label. Two-finger swipe to zoom."));
}

TEST_F(LanesInnerViewTest, of_markers_in_one_place_the_later_is_pointed_at) {
    window_.haveMarkers({{"note", 8000, "first", 0}, {"note", 8080, "second", 0}});
    EXPECT_EQ(view().hintAt(inLane(Lane::custom, 8000).toPoint()),
              QStringLiteral("02:14:40  Note:  second"));
}

TEST_F(LanesInnerViewTest, without_lanes_the_bars_move_to_the_top) {
    window_.haveMarkers({{"eas", 8000, "", 0}});
    window_.lanes.clear();
    window_.layOutLogsTab();

    EXPECT_EQ(view().summaryBarFrame(), (Box{0, 0, 1080, kSummaryBarHeight}));
    EXPECT_EQ(view().height(), 82);
    EXPECT_EQ(view().hintAt({100, 60}), QString());
    pointer_.click({300, 60});
    EXPECT_THAT(window_.jumps, ElementsAre(24000));
}

TEST_F(LanesInnerViewTest, a_lane_that_is_alone_has_all_the_height) {
    window_.haveMarkers({{"hour", 8000, "", 0}});
    window_.lanes = {Lane::hour};
    window_.layOutLogsTab();
    EXPECT_EQ(view().summaryBarFrame().y, kBar);
    EXPECT_EQ(view().hintAt({100, 590}), QStringLiteral("02:13:20  Hour"));
}

TEST_F(LanesInnerViewTest, a_press_on_the_summary_bar_seeks_and_a_drag_selects) {
    pointer_.press(inBar(100));
    EXPECT_THAT(window_.jumps, ElementsAre(8000));
    pointer_.move(inBar(150));
    pointer_.move(inBar(200));
    pointer_.release(inBar(200));
    ASSERT_EQ(count(), 1U);
    EXPECT_EQ(selection(0).startSec, 8000);
    EXPECT_EQ(selection(0).endSec, 16000);
    EXPECT_THAT(window_.jumps, ElementsAre(8000));
}

TEST_F(LanesInnerViewTest, a_drag_goes_on_outside_the_bar_and_ends_at_the_day) {
    pointer_.press(inBar(100));
    pointer_.move({50, 20});
    pointer_.move({-300, 20});
    pointer_.release({-300, 20});
    ASSERT_EQ(count(), 1U);
    EXPECT_EQ(selection(0).startSec, 0);
    EXPECT_EQ(selection(0).endSec, 8000);
    EXPECT_THAT(window_.jumps, ElementsAre(8000));
}

TEST_F(LanesInnerViewTest, an_edge_is_dragged_from_five_points_beside_it) {
    window_.chosen.append({8000}, {16000});
    pointer_.press(inBar(205));
    pointer_.move(inBar(250));
    pointer_.release(inBar(250));
    EXPECT_EQ(selection(0).endSec, 20000);
    EXPECT_THAT(window_.jumps, IsEmpty());
}

TEST_F(LanesInnerViewTest, a_long_press_deletes_a_selection) {
    window_.chosen.append({8000}, {16000});
    pointer_.press(inBar(150));
    window_.timers.pass(0.61);
    EXPECT_EQ(count(), 0U);
    pointer_.move(inBar(180));
    pointer_.release(inBar(180));
    EXPECT_EQ(count(), 0U);
    EXPECT_THAT(window_.jumps, IsEmpty());
}

TEST_F(LanesInnerViewTest, a_press_that_an_alert_interrupts_deletes_nothing) {
    window_.chosen.append({8000}, {16000});
    pointer_.press(inBar(150));
    window_.timers.pass(0.3);
    showAlert();
    pointer_.loseRelease();
    window_.timers.pass(10);
    EXPECT_EQ(count(), 1U);

    pointer_.press(inBar(150));
    window_.timers.pass(0.61);
    EXPECT_EQ(count(), 0U) << "the next press is one like any other";
}

TEST_F(LanesInnerViewTest, a_drag_that_an_alert_interrupts_ends_where_it_is) {
    pointer_.press(inBar(200));
    pointer_.move(inBar(100));
    showAlert();
    EXPECT_EQ(selection(0).startSec, 8000);
    EXPECT_EQ(selection(0).endSec, 16000);
    pointer_.move(inBar(400));
    EXPECT_EQ(selection(0).endSec, 16000);
}

TEST_F(LanesInnerViewTest, a_drag_whose_release_was_lost_ends_at_the_next_move) {
    pointer_.press(inBar(200));
    pointer_.move(inBar(100));
    pointer_.loseRelease();
    pointer_.move(inBar(300));
    EXPECT_EQ(selection(0).startSec, 8000);
    EXPECT_EQ(selection(0).endSec, 16000);
    pointer_.move(inBar(400));
    EXPECT_EQ(selection(0).endSec, 16000);
}

TEST_F(LanesInnerViewTest, the_pointer_shows_which_edges_can_be_dragged) {
    window_.chosen.append({8000}, {16000});
    const auto shape = [this] { return view().cursor().shape(); };
    pointer_.move(inBar(104));
    EXPECT_EQ(shape(), Qt::SizeHorCursor);
    pointer_.move(inBar(150));
    EXPECT_EQ(shape(), Qt::ArrowCursor);
    pointer_.move(inBar(197));
    EXPECT_EQ(shape(), Qt::SizeHorCursor);
    pointer_.move({197, kBar - 1});
    EXPECT_EQ(shape(), Qt::ArrowCursor);
}

TEST_F(LanesInnerViewTest, the_pointer_follows_a_selection_that_goes_away_under_it) {
    window_.chosen.append({8000}, {16000});
    pointer_.move(inBar(104));
    window_.chosen.clearAllSelections();
    EXPECT_EQ(view().cursor().shape(), Qt::ArrowCursor);
}

TEST_F(LanesInnerViewTest, the_playheads_line_goes_through_all_rows) {
    window_.playhead = 43200;
    window_.layOutLogsTab();
    EXPECT_EQ(view().playheadFrame(), (Box{539, 0, 2, 682}));
}

TEST_F(LanesInnerViewTest, a_playhead_beyond_all_days_stands_at_the_end_of_the_axis) {
    for (const double damaged : {1e300, -1e300}) {
        window_.playhead = damaged;
        window_.layOutLogsTab();
        EXPECT_EQ(view().playheadFrame().x, damaged > 0 ? 1080 : -1);
        view().grab();
    }
}

/// What a screen reader may ask, once there is one.
class TimelineAccessibleTest : public LanesInnerViewTest {
  protected:
    TimelineAccessibleTest() { QAccessible::setActive(true); }
    ~TimelineAccessibleTest() override { QAccessible::setActive(false); }

    QAccessibleInterface& reader() { return *QAccessible::queryAccessibleInterface(&view()); }
};

TEST_F(TimelineAccessibleTest, reads_the_playheads_time_and_the_marker_under_it) {
    window_.haveMarkers({{"eas", 50400, "Test", 0}, {"vt", 50000, "Ann", 600}});
    window_.playhead = 50401;
    EXPECT_EQ(reader().text(QAccessible::Name), QStringLiteral("Timeline"));
    EXPECT_EQ(reader().text(QAccessible::Description), svHint(view()));
    EXPECT_EQ(reader().role(), QAccessible::Slider);
    EXPECT_EQ(reader().text(QAccessible::Value),
              QStringLiteral("14:00:01; 13:53:20  Voicetrack:  Ann; 14:00:00  EAS:  Test"));

    window_.playhead = 3600;
    EXPECT_EQ(reader().text(QAccessible::Value), QStringLiteral("01:00:00"));
}

TEST_F(TimelineAccessibleTest, moves_the_playhead) {
    window_.playhead = 3600;
    QAccessibleValueInterface* value = reader().valueInterface();
    ASSERT_TRUE(value);
    EXPECT_EQ(value->currentValue().toDouble(), 3600);
    EXPECT_EQ(value->minimumValue().toDouble(), 0);
    EXPECT_EQ(value->maximumValue().toDouble(), kSecondsInDay);
    value->setCurrentValue(7200.0);
    EXPECT_THAT(window_.jumps, ElementsAre(7200));
}

/// Hears whether Qt is told something of a view for screen readers. Qt then asks for the view's
/// interface, whether or not its platform has anybody to pass the event on to; a platform without
/// screen readers calls no update handler.
class ToldOf {
  public:
    explicit ToldOf(QObject& view) {
        view_ = &view;
        forget();
        QAccessible::installFactory(&ToldOf::hear);
    }
    ~ToldOf() { QAccessible::removeFactory(&ToldOf::hear); }
    ToldOf(const ToldOf&) = delete;
    ToldOf& operator=(const ToldOf&) = delete;

    /// Since the last question.
    bool take() {
        const bool told = std::exchange(told_, false);
        if (told) forget();
        return told;
    }

  private:
    // An interface that Qt has is not asked for again.
    static void forget() {
        const QAccessible::Id id =
            QAccessible::uniqueId(QAccessible::queryAccessibleInterface(view_));
        QAccessible::deleteAccessibleInterface(id);
        told_ = false;
    }
    static QAccessibleInterface* hear(const QString&, QObject* object) {
        told_ = told_ || object == view_;
        return nullptr;  // another knows
    }

    // Qt's factories are plain functions.
    static inline QObject* view_ = nullptr;
    static inline bool told_ = false;
};

TEST_F(TimelineAccessibleTest, hears_of_the_playhead_only_when_it_has_come_to_rest) {
    ToldOf told(view());
    for (int tick = 0; tick < 20; ++tick) {
        view().setPlayheadFrame({100.0 + tick, 0, 2, 682});
        window_.timers.pass(0.05);
        EXPECT_FALSE(told.take()) << "it moves";
    }
    window_.timers.pass(0.4);
    EXPECT_FALSE(told.take()) << "it has only just stopped";
    window_.timers.pass(0.1);
    EXPECT_TRUE(told.take());
    window_.timers.pass(5);
    EXPECT_FALSE(told.take()) << "once is enough";
}

TEST_F(LanesInnerViewTest, nothing_is_timed_for_a_screen_reader_that_is_not_there) {
    const auto waitingBefore = window_.timers.waiting();
    view().setPlayheadFrame({100, 0, 2, 682});
    EXPECT_EQ(window_.timers.waiting(), waitingBefore);
}

}  // namespace
}  // namespace sonavault::testing
