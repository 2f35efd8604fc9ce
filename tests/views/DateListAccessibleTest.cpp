#include "views/DateListAccessible.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QCoreApplication>

#include "views/DateRowView.h"
#include "views/FakeDateListHost.h"

namespace sonavault::testing {
namespace {

class DateListAccessibleTest : public ::testing::Test {
  protected:
    DateListAccessibleTest() {
        list_.resize(280, 500);
        list_.renderDateList(someDays(2), "2026-05-07");
    }

    /// The row at that place, as a screen reader meets it.
    QAccessibleInterface* row(int index) {
        return QAccessible::queryAccessibleInterface(list_.childAt(60, 36 + 61 * index + 20));
    }

    FakeDateListHost host_;
    DateListView list_{host_, nullptr};
};

TEST_F(DateListAccessibleTest, reads_a_row_as_an_item_of_a_list) {
    EXPECT_EQ(row(0)->role(), QAccessible::ListItem);
    EXPECT_EQ(row(0)->text(QAccessible::Name),
              QStringLiteral("2026-05-08 Fri, TODAY, 09:00 recorded · 80 markers"));
    EXPECT_EQ(row(0)->text(QAccessible::Description),
              QStringLiteral("Today's recording — click to view the live timeline."));
    EXPECT_EQ(row(0)->parent()->role(), QAccessible::List);
    EXPECT_EQ(row(0)->parent()->text(QAccessible::Name), QStringLiteral("Daily recordings"));
    EXPECT_EQ(row(0)->parent()->childCount(), 3);
}

TEST_F(DateListAccessibleTest, tells_which_day_is_selected) {
    EXPECT_FALSE(row(0)->state().selected);
    EXPECT_TRUE(row(1)->state().selected);
    EXPECT_TRUE(row(0)->state().selectable);
}

TEST_F(DateListAccessibleTest, loads_a_day_that_is_pressed_also_when_that_rebuilds_the_list) {
    host_.onLoad = [this](const std::string& date) { list_.renderDateList(someDays(2), date); };
    row(2)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(host_.loaded, std::vector<std::string>{"2026-05-06"});
    EXPECT_TRUE(row(2)->state().selected);
}

TEST_F(DateListAccessibleTest, leaves_other_actions_as_they_are) {
    const auto names = row(0)->actionInterface()->actionNames();
    EXPECT_EQ(names.front(), QAccessibleActionInterface::pressAction());
    row(0)->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
    EXPECT_TRUE(host_.loaded.empty());
}

}  // namespace
}  // namespace sonavault::testing
