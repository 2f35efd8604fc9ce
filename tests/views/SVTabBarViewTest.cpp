#include "views/SVTabBarView.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QTest>

#include "ViewProbe.h"
#include "views/Hints.h"
#include "views/SVTabHotspotView.h"

namespace sonavault::testing {
namespace {

constexpr QColor kSelected{230, 232, 237};
constexpr QColor kInactive{155, 162, 177};
constexpr QColor kStroke{140, 148, 158};
constexpr QColor kBehind{0, 255, 0};

// Where both tabs show their ground: left of their titles, and below the round corners.
constexpr QPoint kInLogs{8, 30};
constexpr QPoint kInAirchecks{148, 30};

class TabBar : public ::testing::Test {
  protected:
    TabBar() {
        behind.setAutoFillBackground(true);
        behind.setPalette(QPalette(kBehind));
        behind.resize(304, 40);
        bar->setGeometry(0, 0, 304, 40);
        bar->setTabs({{"logs", "Audio Logging"}, {"airchecks", "Airchecks"}});
        bar->setTabHints({{"logs", "the day"}, {"airchecks", "the extracts"}});
        bar->onSelectionChanged = [this](const std::string& id) { told.push_back(id); };
        behind.show();
    }

    void click(int x, int y, Qt::MouseButton button = Qt::LeftButton) {
        QTest::mouseClick(bar, button, {}, {x, y});
    }

    std::vector<SVTabHotspotView*> hotspots() {
        std::vector<SVTabHotspotView*> found;
        for (QObject* child : bar->children()) {
            if (auto* hotspot = dynamic_cast<SVTabHotspotView*>(child)) found.push_back(hotspot);
        }
        return found;
    }

    QWidget behind;
    SVTabBarView* bar = new SVTabBarView(&behind);
    std::vector<std::string> told;
};

TEST_F(TabBar, begins_with_the_logs) {
    EXPECT_EQ(bar->selectedTabId(), "logs");
}

TEST_F(TabBar, fills_the_selected_tab_light_and_the_others_dark) {
    QImage image = picture(behind);
    EXPECT_EQ(image.pixelColor(kInLogs), kSelected);
    EXPECT_EQ(image.pixelColor(kInAirchecks), kInactive);

    bar->setSelectedTabId("airchecks");

    image = picture(behind);
    EXPECT_EQ(image.pixelColor(kInLogs), kInactive);
    EXPECT_EQ(image.pixelColor(kInAirchecks), kSelected);
}

TEST_F(TabBar, rounds_the_upper_corners_and_leaves_the_lower_ones_square) {
    const QImage image = picture(behind);

    EXPECT_EQ(image.pixelColor(0, 1), kBehind);
    EXPECT_EQ(image.pixelColor(1, 2), kBehind);
    EXPECT_EQ(image.pixelColor(280, 1), kBehind);
    EXPECT_EQ(image.pixelColor(0, 38), kStroke);
    EXPECT_EQ(image.pixelColor(280, 38), kStroke);
}

TEST_F(TabBar, strokes_each_tab_one_point_wide) {
    const QImage image = picture(behind);

    EXPECT_EQ(image.pixelColor(70, 0), kBehind) << "above";
    EXPECT_EQ(image.pixelColor(70, 1), kStroke) << "the top";
    EXPECT_EQ(image.pixelColor(70, 2), kSelected);
    EXPECT_EQ(image.pixelColor(70, 37), kSelected);
    EXPECT_EQ(image.pixelColor(70, 38), kStroke) << "the foot";
    EXPECT_EQ(image.pixelColor(70, 39), kBehind) << "below";
    EXPECT_EQ(image.pixelColor(0, 30), kStroke) << "the left side";
    EXPECT_EQ(image.pixelColor(1, 30), kSelected);
    EXPECT_EQ(image.pixelColor(139, 30), kSelected);
    EXPECT_EQ(image.pixelColor(140, 30), kStroke) << "the shared side";
    EXPECT_EQ(image.pixelColor(141, 30), kInactive);
    EXPECT_EQ(image.pixelColor(290, 30), kBehind) << "right of the last";
}

TEST_F(TabBar, writes_dark_on_the_selected_tab_and_white_on_the_others) {
    const QImage image = picture(behind);
    int dark = 0;
    int white = 0;
    for (int y = 8; y < 34; ++y) {
        for (int x = 4; x < 136; ++x) dark += image.pixelColor(x, y).lightness() < 60;
        for (int x = 144; x < 276; ++x) white += image.pixelColor(x, y) == QColor(Qt::white);
    }
    EXPECT_GT(dark, 100);
    EXPECT_GT(white, 100);
}

TEST_F(TabBar, selects_the_tab_that_is_clicked_and_tells_it) {
    click(200, 20);
    EXPECT_EQ(bar->selectedTabId(), "airchecks");
    click(20, 20);
    EXPECT_EQ(bar->selectedTabId(), "logs");

    EXPECT_EQ(told, (std::vector<std::string>{"airchecks", "logs"}));
}

TEST_F(TabBar, does_nothing_at_a_click_on_the_selected_tab) {
    click(20, 20);

    EXPECT_EQ(bar->selectedTabId(), "logs");
    EXPECT_TRUE(told.empty());
}

TEST_F(TabBar, does_nothing_at_a_click_beside_the_tabs_or_with_another_button) {
    click(290, 20);
    click(200, 39);
    click(200, 20, Qt::RightButton);

    EXPECT_EQ(bar->selectedTabId(), "logs");
    EXPECT_TRUE(told.empty());
}

TEST_F(TabBar, tells_nobody_of_a_tab_that_the_program_selects) {
    bar->setSelectedTabId("airchecks");

    EXPECT_TRUE(told.empty());
}

TEST_F(TabBar, lays_a_hotspot_with_the_hover_text_over_each_tab) {
    ASSERT_EQ(hotspots().size(), 2U);
    EXPECT_EQ(hotspots()[0]->geometry(), QRect(0, 1, 140, 38));
    EXPECT_EQ(hotspots()[1]->geometry(), QRect(140, 1, 140, 38));
    EXPECT_EQ(svHint(*hotspots()[0]), "the day");
    EXPECT_EQ(svHint(*hotspots()[1]), "the extracts");
    EXPECT_FALSE(hotspots()[0]->isHidden());
    EXPECT_EQ(behind.childAt(20, 20), bar) << "the mouse goes through";
}

TEST_F(TabBar, makes_the_hotspots_anew_at_each_change) {
    bar->setSelectedTabId("airchecks");
    EXPECT_EQ(hotspots().size(), 2U);

    bar->setTabHints({{"logs", "only this"}});
    ASSERT_EQ(hotspots().size(), 2U);
    EXPECT_EQ(svHint(*hotspots()[0]), "only this");
    EXPECT_EQ(svHint(*hotspots()[1]), "");

    bar->setTabs({{"logs", "Audio Logging"}});
    ASSERT_EQ(hotspots().size(), 1U);
    EXPECT_EQ(hotspots()[0]->geometry(), QRect(140, 1, 140, 38));
}

TEST_F(TabBar, follows_the_arrow_keys_and_stops_at_the_ends) {
    QTest::keyClick(bar, Qt::Key_Left);
    EXPECT_TRUE(told.empty());

    QTest::keyClick(bar, Qt::Key_Right);
    QTest::keyClick(bar, Qt::Key_Right);
    QTest::keyClick(bar, Qt::Key_Up);
    QTest::keyClick(bar, Qt::Key_Down);

    EXPECT_EQ(told, (std::vector<std::string>{"airchecks", "logs", "airchecks"}));
}

TEST_F(TabBar, shows_where_the_keyboard_is) {
    const QImage before = picture(behind);

    behind.activateWindow();
    bar->setFocus(Qt::TabFocusReason);
    behind.setAttribute(Qt::WA_KeyboardFocusChange);  // as the Tab key does
    ASSERT_TRUE(QTest::qWaitForWindowActive(&behind));

    EXPECT_NE(picture(behind), before);
    EXPECT_EQ(picture(behind).pixelColor(kInAirchecks), kInactive);
}

TEST_F(TabBar, is_a_list_of_tabs_to_a_screen_reader) {
    QAccessibleInterface* list = QAccessible::queryAccessibleInterface(bar);

    ASSERT_TRUE(list);
    EXPECT_EQ(list->role(), QAccessible::PageTabList);
    ASSERT_EQ(list->childCount(), 2);
    QAccessibleInterface* airchecks = list->child(1);
    EXPECT_EQ(airchecks->role(), QAccessible::PageTab);
    EXPECT_EQ(airchecks->text(QAccessible::Name), "Airchecks");
    EXPECT_EQ(airchecks->text(QAccessible::Description), "the extracts");
    EXPECT_TRUE(list->child(0)->state().selected);
    EXPECT_FALSE(airchecks->state().selected);
    EXPECT_TRUE(airchecks->state().selectable);
}

TEST_F(TabBar, lets_a_screen_reader_press_a_tab) {
    QAccessibleInterface* list = QAccessible::queryAccessibleInterface(bar);
    ASSERT_TRUE(list && list->childCount() == 2);
    QAccessibleActionInterface* actions = list->child(1)->actionInterface();
    ASSERT_TRUE(actions);
    ASSERT_EQ(actions->actionNames(), QStringList{QAccessibleActionInterface::pressAction()});

    actions->doAction(QAccessibleActionInterface::pressAction());

    EXPECT_TRUE(QTest::qWaitFor([this] { return !told.empty(); }));
    EXPECT_EQ(told, std::vector<std::string>{"airchecks"});
    EXPECT_TRUE(QAccessible::queryAccessibleInterface(bar)->child(1)->state().selected);
}

}  // namespace
}  // namespace sonavault::testing
