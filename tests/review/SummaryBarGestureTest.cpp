#include "review/SummaryBarGesture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/ManualTimers.h"

namespace sonavault::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// The program around the bar, on whose track a point is a second.
class Window final : public SummaryBarGestureHost, public SelectionsHost {
  public:
    double trackW() const override { return track; }
    void jumpTo(DaySeconds position) override { jumps.push_back(position.value); }

    DaySeconds playheadSec() const override { return {0}; }
    void redrawSummaryBar() override { ++redraws; }
    void rebuildSummaryBarCursors() override {}
    void showSelectionInfo(const std::string& text, bool) override { info = text; }
    void showExportSelectionsButton(const std::optional<std::string>&) override {}

    double track = kSecondsInDay;
    std::vector<double> jumps;
    int redraws = 0;
    std::string info;
};

class SummaryBarGestureTest : public ::testing::Test {
  protected:
    template <class Mode>
    bool is() const {
        return std::holds_alternative<Mode>(gesture_.dragMode());
    }
    /// A selection that was there before.
    QUuid haveSelection(double start, double end) {
        const auto index = selections_.append({start}, {end});
        window_.redraws = 0;
        return selections_.selections()[index].id;
    }
    std::size_t count() const { return selections_.selections().size(); }
    std::size_t undoSteps() const { return selections_.undoStack().size(); }
    const Selection& first() const { return selections_.selections().at(0); }

    ManualClock clock_{WallTime{}};
    ManualTimers timers_{clock_};
    Window window_;
    Selections selections_{window_};
    SummaryBarGesture gesture_{window_, selections_, timers_.make()};
};

TEST_F(SummaryBarGestureTest, a_press_on_empty_ground_seeks_at_once) {
    gesture_.mouseDown(5000);
    EXPECT_THAT(window_.jumps, ElementsAre(5000));
    gesture_.mouseUp();
    EXPECT_EQ(count(), 0U);
    EXPECT_EQ(undoSteps(), 0U);
    EXPECT_TRUE(is<SummaryBarGesture::None>());
}

TEST_F(SummaryBarGestureTest, three_points_are_still_a_press) {
    gesture_.mouseDown(5000);
    gesture_.mouseDragged(5003);
    gesture_.mouseDragged(4997);
    EXPECT_TRUE(is<SummaryBarGesture::CreatingPending>());
    gesture_.mouseUp();
    EXPECT_THAT(window_.jumps, ElementsAre(5000));
    EXPECT_EQ(count(), 0U);
    EXPECT_EQ(undoSteps(), 0U);
}

TEST_F(SummaryBarGestureTest, a_drag_over_empty_ground_makes_a_selection) {
    gesture_.mouseDown(5000);
    gesture_.mouseDragged(5004);
    EXPECT_TRUE(is<SummaryBarGesture::Creating>());
    EXPECT_EQ(undoSteps(), 1U);
    gesture_.mouseDragged(5600);
    EXPECT_EQ(window_.info, "1 selection: 01:23:20 – 01:33:20 (00:10:00)");
    gesture_.mouseUp();
    EXPECT_EQ(first().startSec, 5000);
    EXPECT_EQ(first().endSec, 5600);
    EXPECT_EQ(undoSteps(), 1U);
    EXPECT_THAT(window_.jumps, ElementsAre(5000));
}

TEST_F(SummaryBarGestureTest, a_drag_to_the_left_ends_in_order) {
    gesture_.mouseDown(5000);
    gesture_.mouseDragged(4000);
    EXPECT_GT(first().startSec, first().endSec);
    gesture_.mouseUp();
    EXPECT_EQ(first().startSec, 4000);
    EXPECT_EQ(first().endSec, 5000);
}

TEST_F(SummaryBarGestureTest, a_selection_dragged_back_to_nothing_is_gone_and_leaves_a_snapshot) {
    gesture_.mouseDown(5000);
    gesture_.mouseDragged(5004);
    gesture_.mouseDragged(5000.02);
    EXPECT_EQ(count(), 1U);
    gesture_.mouseUp();
    EXPECT_EQ(count(), 0U);
    EXPECT_EQ(undoSteps(), 1U);
}

TEST_F(SummaryBarGestureTest, a_selection_ends_at_the_days_end) {
    gesture_.mouseDown(86000);
    gesture_.mouseDragged(90000);
    gesture_.mouseUp();
    EXPECT_EQ(first().endSec, 86400);
}

TEST_F(SummaryBarGestureTest, a_press_5_points_from_an_edge_resizes) {
    haveSelection(1000, 2000);
    gesture_.mouseDown(995);
    EXPECT_TRUE(is<SummaryBarGesture::Resizing>());
    EXPECT_EQ(undoSteps(), 1U);
    gesture_.mouseDragged(800);
    gesture_.mouseUp();
    EXPECT_EQ(first().startSec, 800);
    EXPECT_EQ(first().endSec, 2000);
    EXPECT_THAT(window_.jumps, IsEmpty());
}

TEST_F(SummaryBarGestureTest, a_press_further_inside_is_a_long_press) {
    haveSelection(1000, 2000);
    gesture_.mouseDown(1005.5);
    EXPECT_TRUE(is<SummaryBarGesture::LongPressing>());
    EXPECT_EQ(undoSteps(), 0U);
    EXPECT_EQ(timers_.waiting(), 1U);
}

TEST_F(SummaryBarGestureTest, a_narrow_selection_is_taken_by_its_lower_edge) {
    haveSelection(1000, 1008);
    gesture_.mouseDown(1004);
    ASSERT_TRUE(is<SummaryBarGesture::Resizing>());
    EXPECT_EQ(std::get<SummaryBarGesture::Resizing>(gesture_.dragMode()).edge, Edge::start);
}

TEST_F(SummaryBarGestureTest, an_edge_dragged_past_the_other_ends_in_order_as_the_same_selection) {
    const QUuid id = haveSelection(1000, 2000);
    gesture_.mouseDown(1000);
    gesture_.mouseDragged(2500);
    EXPECT_EQ(first().startSec, 2500);
    gesture_.mouseUp();
    EXPECT_EQ(first().startSec, 2000);
    EXPECT_EQ(first().endSec, 2500);
    EXPECT_EQ(first().id, id);
}

TEST_F(SummaryBarGestureTest, a_press_on_an_edge_alone_leaves_one_snapshot) {
    haveSelection(1000, 2000);
    gesture_.mouseDown(2000);
    gesture_.mouseUp();
    EXPECT_EQ(undoSteps(), 1U);
    EXPECT_EQ(first().startSec, 1000);
    EXPECT_EQ(first().endSec, 2000);
}

TEST_F(SummaryBarGestureTest, a_selection_held_for_600_milliseconds_is_gone) {
    haveSelection(1000, 2000);
    haveSelection(5000, 6000);
    gesture_.mouseDown(1500);
    timers_.pass(0.599);
    EXPECT_EQ(count(), 2U);
    timers_.pass(0.001);
    ASSERT_EQ(count(), 1U);
    EXPECT_EQ(first().startSec, 5000);
    EXPECT_EQ(window_.info, "1 selection: 01:23:20 – 01:40:00 (00:16:40)");
    EXPECT_EQ(undoSteps(), 1U);
    window_.redraws = 0;
    gesture_.mouseDragged(1700);
    gesture_.mouseUp();
    EXPECT_EQ(count(), 1U);
    EXPECT_EQ(window_.redraws, 0);
    EXPECT_THAT(window_.jumps, IsEmpty());
}

TEST_F(SummaryBarGestureTest, a_selection_deleted_by_holding_can_be_brought_back) {
    const QUuid id = haveSelection(1000, 2000);
    gesture_.mouseDown(1500);
    timers_.pass(0.6);
    selections_.undoLastChange();
    EXPECT_EQ(first().id, id);
}

TEST_F(SummaryBarGestureTest, a_hold_that_moves_is_dead_and_becomes_no_drag) {
    haveSelection(1000, 2000);
    gesture_.mouseDown(1500);
    timers_.pass(0.3);
    gesture_.mouseDragged(1504);
    EXPECT_TRUE(is<SummaryBarGesture::None>());
    gesture_.mouseDragged(1700);
    timers_.pass(10);
    gesture_.mouseUp();
    EXPECT_EQ(count(), 1U);
    EXPECT_EQ(undoSteps(), 0U);
    EXPECT_EQ(window_.redraws, 0);
    EXPECT_EQ(timers_.waiting(), 0U);
}

TEST_F(SummaryBarGestureTest, a_hold_may_tremble_by_three_points) {
    haveSelection(1000, 2000);
    gesture_.mouseDown(1500);
    gesture_.mouseDragged(1503);
    timers_.pass(0.6);
    EXPECT_EQ(count(), 0U);
}

TEST_F(SummaryBarGestureTest, a_short_click_on_a_selection_does_nothing) {
    haveSelection(1000, 2000);
    gesture_.mouseDown(1500);
    timers_.pass(0.3);
    gesture_.mouseUp();
    timers_.pass(10);
    EXPECT_EQ(count(), 1U);
    EXPECT_EQ(undoSteps(), 0U);
    EXPECT_THAT(window_.jumps, IsEmpty());
}

TEST_F(SummaryBarGestureTest, an_undo_in_the_midst_of_a_drag_ends_it) {
    gesture_.mouseDown(5000);
    gesture_.mouseDragged(5500);
    selections_.undoLastChange();
    EXPECT_EQ(count(), 0U);
    gesture_.mouseDragged(5600);
    EXPECT_TRUE(is<SummaryBarGesture::None>());
    EXPECT_EQ(count(), 0U);
}

TEST_F(SummaryBarGestureTest, clearing_in_the_midst_of_a_resize_ends_it) {
    haveSelection(1000, 2000);
    gesture_.mouseDown(1000);
    selections_.clearAllSelections();
    gesture_.mouseDragged(900);
    EXPECT_TRUE(is<SummaryBarGesture::None>());
    EXPECT_EQ(count(), 0U);
}

TEST_F(SummaryBarGestureTest, a_release_over_what_is_gone_shows_nothing_anew) {
    haveSelection(1000, 2000);
    gesture_.mouseDown(1000);
    selections_.clearAllSelections();
    window_.redraws = 0;
    gesture_.mouseUp();
    EXPECT_TRUE(is<SummaryBarGesture::None>());
    EXPECT_EQ(window_.redraws, 0);
}

TEST_F(SummaryBarGestureTest, a_hold_of_what_is_gone_deletes_nothing) {
    haveSelection(1000, 2000);
    gesture_.mouseDown(1500);
    selections_.clearAllSelections();
    const auto steps = undoSteps();
    timers_.pass(0.6);
    EXPECT_TRUE(is<SummaryBarGesture::None>());
    EXPECT_EQ(undoSteps(), steps);
}

TEST_F(SummaryBarGestureTest, ends_its_timer_with_itself) {
    haveSelection(1000, 2000);
    {
        SummaryBarGesture other(window_, selections_, timers_.make());
        other.mouseDown(1500);
        EXPECT_EQ(timers_.waiting(), 1U);
    }
    timers_.pass(1);
    EXPECT_EQ(count(), 1U);
}

TEST_F(SummaryBarGestureTest, a_second_press_forgets_the_hold_of_the_first) {
    haveSelection(1000, 2000);
    gesture_.mouseDown(1500);
    gesture_.mouseDown(5000);
    EXPECT_EQ(timers_.waiting(), 0U);
    timers_.pass(1);
    EXPECT_EQ(count(), 1U);
}

TEST_F(SummaryBarGestureTest, a_drag_without_a_press_is_nothing) {
    gesture_.mouseDragged(500);
    gesture_.mouseUp();
    EXPECT_EQ(count(), 0U);
    EXPECT_EQ(window_.redraws, 0);
}

}  // namespace
}  // namespace sonavault::testing
