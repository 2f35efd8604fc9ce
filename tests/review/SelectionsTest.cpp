#include "review/Selections.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace sonavault::testing {
namespace {

using ::testing::ElementsAre;

class FakeWindow final : public SelectionsHost {
  public:
    DaySeconds playheadSec() const override { return {playhead}; }
    void redrawSummaryBar() override { calls.emplace_back("bar"); }
    void rebuildSummaryBarCursors() override { calls.emplace_back("cursors"); }
    void showSelectionInfo(const std::string& text, bool canExportNow) override {
        calls.emplace_back("info");
        info = text;
        canExport = canExportNow;
    }
    void showExportSelectionsButton(const std::optional<std::string>& title) override {
        calls.emplace_back("button");
        button = title;
    }

    double playhead = 0;
    std::string info = "Selections: —";
    bool canExport = false;
    std::optional<std::string> button;
    std::vector<std::string> calls;
};

class SelectionsTest : public ::testing::Test {
  protected:
    void start(double at) {
        window_.playhead = at;
        selections_.markSelectionStart();
    }
    void end(double at) {
        window_.playhead = at;
        selections_.markSelectionEnd();
    }
    void mark(double from, double to) {
        start(from);
        end(to);
    }
    std::size_t count() const { return selections_.selections().size(); }
    std::size_t undoSteps() const { return selections_.undoStack().size(); }
    const Selection& only() const { return selections_.selections().at(0); }

    FakeWindow window_;
    Selections selections_{window_};
};

TEST_F(SelectionsTest, an_end_without_a_start_changes_nothing) {
    window_.info = "as it was";
    end(100);
    EXPECT_EQ(count(), 0U);
    EXPECT_EQ(undoSteps(), 0U);
    EXPECT_EQ(window_.info, "as it was");
    EXPECT_TRUE(window_.calls.empty());
}

TEST_F(SelectionsTest, a_slip_of_the_hand_is_no_selection_and_no_undo_step) {
    start(100.0);
    EXPECT_EQ(window_.info, "Pending: 00:01:40 — press ] to end");
    end(100.04);
    EXPECT_EQ(count(), 0U);
    EXPECT_EQ(undoSteps(), 0U);
    EXPECT_EQ(selections_.pendingStartSec(), std::nullopt);
    EXPECT_EQ(window_.info, "Selections: —");
}

TEST_F(SelectionsTest, a_twentieth_of_a_second_is_long_enough) {
    mark(100.0, 100.05);
    EXPECT_EQ(count(), 1U);
    EXPECT_EQ(undoSteps(), 1U);
}

TEST_F(SelectionsTest, a_twentieth_of_a_second_is_long_enough_at_every_second_of_the_day) {
    for (int second = 0; second < 86400; ++second) {
        ASSERT_FALSE(isTooShort(second + 0.05 - second)) << second;
        ASSERT_TRUE(isTooShort(second + 0.0499 - second)) << second;
    }
}

TEST_F(SelectionsTest, an_end_before_the_start_comes_out_in_order) {
    mark(200, 100);
    EXPECT_EQ(only().startSec, 100);
    EXPECT_EQ(only().endSec, 200);
}

TEST_F(SelectionsTest, the_last_start_before_the_end_is_the_one_that_counts) {
    start(100);
    start(150);
    EXPECT_EQ(undoSteps(), 0U);
    end(200);
    EXPECT_EQ(only().startSec, 150);
    EXPECT_EQ(undoSteps(), 1U);
}

TEST_F(SelectionsTest, twenty_of_twenty_one_changes_can_be_undone) {
    for (int i = 0; i < 21; ++i) mark(i * 100, i * 100 + 50);
    for (int i = 0; i < 20; ++i) selections_.undoLastChange();
    EXPECT_EQ(count(), 1U);
    window_.calls.clear();
    selections_.undoLastChange();
    EXPECT_EQ(count(), 1U);
    EXPECT_EQ(only().startSec, 0);
    EXPECT_TRUE(window_.calls.empty());
}

TEST_F(SelectionsTest, clearing_a_waiting_start_is_a_step_that_does_not_bring_it_back) {
    start(100);
    selections_.clearAllSelections();
    EXPECT_EQ(undoSteps(), 1U);
    EXPECT_EQ(window_.info, "Selections: —");
    selections_.undoLastChange();
    EXPECT_EQ(undoSteps(), 0U);
    EXPECT_EQ(count(), 0U);
    EXPECT_EQ(selections_.pendingStartSec(), std::nullopt);
}

TEST_F(SelectionsTest, clearing_nothing_is_no_step) {
    selections_.clearAllSelections();
    EXPECT_EQ(undoSteps(), 0U);
    EXPECT_TRUE(window_.calls.empty());
}

TEST_F(SelectionsTest, clearing_can_be_undone) {
    mark(10, 20);
    const QUuid id = only().id;
    mark(30, 40);
    selections_.clearAllSelections();
    EXPECT_EQ(window_.button, std::nullopt);
    EXPECT_FALSE(window_.canExport);
    selections_.undoLastChange();
    ASSERT_EQ(count(), 2U);
    EXPECT_EQ(only().id, id);
}

TEST_F(SelectionsTest, a_waiting_start_hides_what_an_undo_changed) {
    mark(10, 20);
    start(100);
    selections_.undoLastChange();
    EXPECT_EQ(count(), 0U);
    EXPECT_EQ(window_.info, "Pending: 00:01:40 — press ] to end");
    EXPECT_EQ(selections_.pendingStartSec(), 100);
}

TEST_F(SelectionsTest, one_selection_is_told_with_its_ends_and_its_length) {
    mark(3600, 4505.9);
    EXPECT_EQ(window_.info, "1 selection: 01:00:00 – 01:15:05 (00:15:05)");
    EXPECT_EQ(window_.button, "Export selection to file");
    EXPECT_TRUE(window_.canExport);
}

TEST_F(SelectionsTest, time_that_is_selected_twice_counts_twice) {
    mark(600, 1200);
    mark(600, 1200);
    EXPECT_EQ(window_.info, "2 selections, total 00:20:00");
}

TEST_F(SelectionsTest, say_how_many_there_are_in_the_order_in_which_they_were_made) {
    mark(300, 400);
    mark(100, 200);
    mark(150, 350);
    EXPECT_EQ(window_.info, "3 selections, total 00:06:40");
    EXPECT_EQ(window_.button, "Export 3 selections to file");
    EXPECT_EQ(only().startSec, 300);
    EXPECT_EQ(selections_.selections().at(2).startSec, 150);
}

TEST_F(SelectionsTest, can_be_exported_also_while_a_start_waits) {
    mark(300, 400);
    start(500);
    EXPECT_TRUE(window_.canExport);
    EXPECT_EQ(window_.button, "Export selection to file");
}

TEST_F(SelectionsTest, are_shown_bar_first_and_button_last) {
    selections_.refreshSelectionUI();
    EXPECT_THAT(window_.calls, ElementsAre("bar", "cursors", "info", "button"));
}

TEST_F(SelectionsTest, an_edge_may_pass_the_other_until_the_drag_is_over) {
    const auto index = selections_.append({100}, {200});
    const QUuid id = only().id;
    EXPECT_TRUE(selections_.moveEdge(index, Edge::start, {300}));
    EXPECT_EQ(only().startSec, 300);
    EXPECT_EQ(window_.info, "1 selection: 00:03:20 – 00:05:00 (00:01:40)");
    EXPECT_TRUE(selections_.settle(index));
    EXPECT_EQ(only().startSec, 200);
    EXPECT_EQ(only().endSec, 300);
    EXPECT_EQ(only().id, id);
    EXPECT_EQ(undoSteps(), 0U);
}

TEST_F(SelectionsTest, a_range_squeezed_to_nothing_goes_away_when_the_drag_is_over) {
    const auto index = selections_.append({100}, {200});
    selections_.moveEdge(index, Edge::end, {100.04});
    EXPECT_EQ(count(), 1U);
    EXPECT_TRUE(selections_.settle(index));
    EXPECT_EQ(count(), 0U);
    EXPECT_EQ(window_.button, std::nullopt);
}

TEST_F(SelectionsTest, refuse_an_index_that_is_gone) {
    selections_.append({100}, {200});
    window_.calls.clear();
    EXPECT_FALSE(selections_.moveEdge(1, Edge::end, {300}));
    EXPECT_FALSE(selections_.settle(1));
    EXPECT_FALSE(selections_.remove(1));
    EXPECT_TRUE(window_.calls.empty());
    EXPECT_EQ(count(), 1U);
}

}  // namespace
}  // namespace sonavault::testing
