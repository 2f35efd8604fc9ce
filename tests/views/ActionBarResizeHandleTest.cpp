#include "views/ActionBarResizeHandle.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "views/Hints.h"
#include "views/Pointer.h"
#include "views/TimelineWindow.h"

namespace sonavault::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ActionBarResizeHandleTest : public ::testing::Test {
  protected:
    ActionBarResizeHandleTest() {
        handle_.resize(800, 8);
        handle_.move(0, 600);
        layouts_ = window_.layouts;
    }
    int layouts() const { return window_.layouts - layouts_; }

    TimelineWindow window_{QSize(1000, 682)};
    ActionBarResizeHandle handle_{window_, nullptr};
    Pointer pointer_{handle_};
    int layouts_ = 0;
};

TEST_F(ActionBarResizeHandleTest, dragging_up_enlarges_the_bar_and_the_end_keeps_it) {
    pointer_.press({100, 4});
    pointer_.move({100, -26});
    EXPECT_EQ(window_.barHeight, 80);
    EXPECT_EQ(window_.inner().summaryBarFrame().height, 80);
    pointer_.move({100, -16});
    EXPECT_EQ(window_.barHeight, 70);
    EXPECT_THAT(window_.keptHeights, IsEmpty());
    pointer_.release({100, -16});
    EXPECT_THAT(window_.keptHeights, ElementsAre(70));
    EXPECT_EQ(layouts(), 2);
}

TEST_F(ActionBarResizeHandleTest, the_drag_counts_from_the_screen_though_the_handle_moves_along) {
    pointer_.press({100, 4});
    pointer_.move({100, -6});
    handle_.move(0, 590);
    pointer_.move({100, 4});
    EXPECT_EQ(window_.barHeight, 60);
}

TEST_F(ActionBarResizeHandleTest, the_bar_stays_within_its_limits) {
    pointer_.press({100, 4});
    pointer_.move({100, -500});
    EXPECT_EQ(window_.barHeight, 180);
    pointer_.move({100, 500});
    EXPECT_EQ(window_.barHeight, 50);
}

TEST_F(ActionBarResizeHandleTest, a_drag_that_changes_nothing_lays_nothing_out) {
    pointer_.press({100, 4});
    pointer_.move({160, 4});
    pointer_.move({160, 40});
    EXPECT_EQ(layouts(), 0);
    pointer_.release({160, 40});
    EXPECT_THAT(window_.keptHeights, ElementsAre(50));
}

TEST_F(ActionBarResizeHandleTest, only_a_drag_with_the_left_button_resizes) {
    pointer_.move({100, -100});
    pointer_.press({100, 4}, Qt::RightButton);
    pointer_.move({100, -100});
    pointer_.release({100, -100});
    EXPECT_EQ(window_.barHeight, 50);
    EXPECT_THAT(window_.keptHeights, IsEmpty());
}

TEST_F(ActionBarResizeHandleTest, shows_what_it_is_for) {
    EXPECT_EQ(handle_.cursor().shape(), Qt::SizeVerCursor);
    EXPECT_EQ(svHint(handle_),
              QStringLiteral("Drag up or down to resize the bottom transport area."));
}

}  // namespace
}  // namespace sonavault::testing
