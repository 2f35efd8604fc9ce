#include "views/DateListView.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QContextMenuEvent>
#include <QLabel>
#include <QMenu>
#include <QPointer>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>
#include <QTimer>
#include <QWheelEvent>

#include "support/ExpectedQtWarnings.h"
#include "views/DateRowView.h"
#include "views/FakeDateListHost.h"
#include "views/Hints.h"
#include "views/PaintCounter.h"

namespace sonavault::testing {
namespace {

constexpr QColor kGround{248, 248, 247};
constexpr QColor kSelected{220, 232, 241};

class DateListViewTest : public ::testing::Test {
  protected:
    DateListViewTest() {
        window_.resize(400, 500);
        list_.setGeometry(0, 0, 280, 500);
        window_.show();
        window_.activateWindow();
        QCoreApplication::processEvents();
    }

    void render(int past, const std::string& selected = "2026-05-08") {
        list_.renderDateList(someDays(past), selected);
        QCoreApplication::processEvents();
    }

    /// The rows that are shown, from the top.
    std::vector<DateRowView*> rows() {
        std::vector<DateRowView*> found;
        for (QWidget* each : list_.findChildren<QWidget*>())
            if (auto* row = dynamic_cast<DateRowView*>(each); row && row->isVisible())
                found.push_back(row);
        std::sort(found.begin(), found.end(), [this](DateRowView* one, DateRowView* other) {
            return topOf(*one) < topOf(*other);
        });
        return found;
    }

    int topOf(const DateRowView& row) const { return row.mapTo(list_.widget(), QPoint()).y(); }

    std::vector<std::string> selectedDates() {
        std::vector<std::string> dates;
        for (const DateRowView* each : rows())
            if (each->isSelected()) dates.push_back(each->recording().date);
        return dates;
    }

    void askForMenu(QWidget& row) {
        QContextMenuEvent event(QContextMenuEvent::Mouse, {50, 20},
                                row.mapToGlobal(QPoint(50, 20)));
        QCoreApplication::sendEvent(&row, &event);
    }

    QMenu* openMenu() { return qobject_cast<QMenu*>(QApplication::activePopupWidget()); }

    static void deleteWhatIsDue() {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
    }

    void turnWheel(QPoint pixels, QPoint angle) {
        QWheelEvent event({50, 50}, list_.mapToGlobal(QPointF(50, 50)), pixels, angle, Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(list_.viewport(), &event);
    }

    FakeDateListHost host_;
    QWidget window_;
    DateListView list_{host_, &window_};
};

/// Menus, which ask a screen for more than a test's has.
class DateListMenuTest : public DateListViewTest {
  private:
    ExpectedQtWarnings noSuchScreen_{"This plugin does not support"};
};

TEST_F(DateListViewTest, has_a_heading_and_says_what_it_is_for) {
    render(0);
    EXPECT_EQ(svHint(list_),
              QStringLiteral("Days Sonavault has recorded — click any date to load that day."));
    const QImage image = list_.grab().toImage();
    EXPECT_EQ(image.pixelColor(0, 0), QColor(236, 236, 233));
    EXPECT_EQ(image.pixelColor(279, 34), QColor(236, 236, 233));
    EXPECT_EQ(image.pixelColor(140, 35), QColor(236, 236, 236));
    EXPECT_EQ(image.pixelColor(140, 480), kGround);
    const auto labels = list_.findChildren<QLabel*>();
    ASSERT_EQ(labels.size(), 1);
    EXPECT_EQ(labels.front()->text(), QStringLiteral("DAILY RECORDINGS"));
    EXPECT_EQ(labels.front()->geometry(), QRect(14, 10, 250, 20));
}

TEST_F(DateListViewTest, stacks_the_rows_below_the_heading_in_the_given_order) {
    auto days = someDays(3);
    days[1].warning = "Gap";
    list_.renderDateList(days, "");
    const auto shown = rows();
    ASSERT_EQ(shown.size(), 4U);
    const std::vector<int> tops{36, 97, 176, 237};
    for (std::size_t i = 0; i < shown.size(); ++i) {
        EXPECT_EQ(shown[i]->recording().date, days[i].date);
        EXPECT_EQ(topOf(*shown[i]), tops[i]);
        EXPECT_EQ(shown[i]->width(), 280);
    }
}

TEST_F(DateListViewTest, is_as_high_as_its_rows_and_at_least_as_what_is_seen) {
    render(2);
    EXPECT_EQ(list_.widget()->size(), QSize(280, 500));
    render(19);
    EXPECT_EQ(list_.widget()->size(), QSize(280, 36 + 20 * 61));
    list_.resize(280, 2000);
    QCoreApplication::processEvents();
    EXPECT_EQ(list_.widget()->size(), QSize(280, 2000));
}

TEST_F(DateListViewTest, gives_the_scroll_bar_no_room) {
    render(100);
    EXPECT_EQ(list_.viewport()->width(), 280);
}

TEST_F(DateListViewTest, shows_nothing_but_the_heading_without_days) {
    render(5);
    list_.renderDateList({}, "2026-05-08");
    EXPECT_TRUE(rows().empty());
    EXPECT_EQ(list_.widget()->height(), 500);
}

TEST_F(DateListViewTest, marks_the_selected_day) {
    render(3, "2026-05-06");
    EXPECT_EQ(selectedDates(), std::vector<std::string>{"2026-05-06"});
    EXPECT_EQ(list_.grab().toImage().pixelColor(4, 36 + 2 * 61 + 30), kSelected);
    EXPECT_EQ(list_.grab().toImage().pixelColor(4, 36 + 61 + 30), kGround);
}

TEST_F(DateListViewTest, hints_at_what_a_click_does) {
    render(1);
    EXPECT_EQ(svHint(*rows()[0]),
              QStringLiteral("Today's recording — click to view the live timeline."));
    EXPECT_EQ(svHint(*rows()[1]), QStringLiteral("Click to view 2026-05-07 on the timeline."));
    EXPECT_EQ(rows()[1]->accessibleDescription(), svHint(*rows()[1]));
}

TEST_F(DateListViewTest, selects_and_loads_a_day_at_a_press) {
    render(3);
    QTest::mousePress(rows()[2], Qt::LeftButton);
    EXPECT_EQ(host_.loaded, std::vector<std::string>{"2026-05-06"});
    EXPECT_EQ(selectedDates(), std::vector<std::string>{"2026-05-06"});
}

TEST_F(DateListViewTest, is_clicked_through_the_level_lights_of_today) {
    render(1, "2026-05-07");
    QWidget* under = window_.childAt(240, 36 + 19);
    ASSERT_EQ(under, rows()[0]);
    QTest::mousePress(under, Qt::LeftButton, {}, {240, 19});
    EXPECT_EQ(host_.loaded, std::vector<std::string>{"2026-05-08"});
}

TEST_F(DateListViewTest, may_be_rebuilt_by_the_click_itself) {
    render(3);
    host_.onLoad = [this](const std::string& date) { list_.renderDateList(someDays(3), date); };
    const QPointer<DateRowView> clicked = rows()[2];
    QTest::mouseClick(clicked, Qt::LeftButton);
    EXPECT_EQ(host_.loaded.size(), 1U);
    deleteWhatIsDue();
    EXPECT_TRUE(clicked.isNull());
    EXPECT_EQ(selectedDates(), std::vector<std::string>{"2026-05-06"});
    EXPECT_EQ(rows().size(), 4U);
}

TEST_F(DateListViewTest, may_be_rebuilt_and_run_events_in_the_midst_of_a_click) {
    render(3);
    const QPointer<DateRowView> clicked = rows()[3];
    host_.onLoad = [&](const std::string& date) {
        list_.renderDateList(someDays(3), date);
        QEventLoop alert;
        QTimer::singleShot(0, &alert, &QEventLoop::quit);
        alert.exec();
        list_.renderDateList(someDays(1), date);
        EXPECT_FALSE(clicked.isNull());
    };
    QEventLoop program;  // a person's clicks always come from one
    QTimer::singleShot(0, &program, [&] {
        QTest::mousePress(clicked, Qt::LeftButton);
        program.quit();
    });
    program.exec();
    deleteWhatIsDue();
    EXPECT_TRUE(clicked.isNull());
    EXPECT_EQ(rows().size(), 2U);
}

TEST_F(DateListViewTest, may_lose_the_clicked_day_by_the_click) {
    render(3);
    host_.onLoad = [this](const std::string&) { list_.renderDateList({}, ""); };
    QTest::mouseClick(rows()[1], Qt::LeftButton);
    deleteWhatIsDue();
    EXPECT_TRUE(rows().empty());
}

TEST_F(DateListViewTest, keeps_its_place_when_it_is_rebuilt) {
    render(60);
    list_.verticalScrollBar()->setValue(777);
    render(60, "2026-04-20");
    EXPECT_EQ(list_.verticalScrollBar()->value(), 777);
    render(0);
    EXPECT_EQ(list_.verticalScrollBar()->value(), 0);
}

TEST_F(DateListViewTest, deletes_the_rows_that_it_no_longer_shows) {
    render(3);
    const QPointer<DateRowView> before = rows()[0];
    render(3);
    deleteWhatIsDue();
    EXPECT_TRUE(before.isNull());
    EXPECT_EQ(list_.findChildren<QLabel*>().size(), 1);
}

TEST_F(DateListViewTest, updates_one_row_in_place) {
    render(3);
    const auto before = rows();
    auto today = someDays(0).front();
    today.recorded = "09:01";
    today.markerCount = 81;
    list_.updateLive(today);
    EXPECT_EQ(rows(), before);
    EXPECT_EQ(before[0]->recording().recorded, "09:01");
    EXPECT_EQ(before[1]->recording().recorded, "24:00");
}

TEST_F(DateListViewTest, ignores_an_update_of_a_day_that_it_does_not_show) {
    render(1);
    list_.updateLive({.date = "1999-01-01", .recorded = "01:00"});
    EXPECT_EQ(rows()[0]->recording().recorded, "09:00");
}

TEST_F(DateListViewTest, draws_nothing_at_a_tick_without_news) {
    render(3);
    PaintCounter paints(*list_.viewport());
    PaintCounter rowPaints(*rows()[0]);
    for (int tick = 0; tick < 20; ++tick) list_.refreshLiveRows();
    EXPECT_EQ(paints.take(), 0);
    EXPECT_EQ(rowPaints.take(), 0);
}

TEST_F(DateListViewTest, follows_the_recorder_at_the_tick) {
    render(3);
    host_.recording = true;
    host_.inputDb = -10;
    list_.refreshLiveRows();
    const QImage image = list_.grab().toImage();
    EXPECT_EQ(image.pixelColor(20, 36 + 22), QColor(229, 85, 85));
    EXPECT_EQ(image.pixelColor(257, 36 + 19), QColor(152, 134, 197));
}

TEST_F(DateListViewTest, visits_every_live_row_at_the_tick) {
    auto days = someDays(2);
    days[1].live = true;  // the day before, until the next scan after midnight
    list_.renderDateList(days, "");
    host_.recording = true;
    list_.refreshLiveRows();
    const QImage image = list_.grab().toImage();
    EXPECT_EQ(image.pixelColor(20, 36 + 22), QColor(229, 85, 85));
    EXPECT_EQ(image.pixelColor(20, 36 + 61 + 22), QColor(229, 85, 85));
}

TEST_F(DateListMenuTest, opens_a_menu_and_returns_at_once) {
    render(1);
    askForMenu(*rows()[1]);
    ASSERT_TRUE(openMenu());
    EXPECT_EQ(openMenu()->actions().size(), 1);
    openMenu()->actions().front()->trigger();
    openMenu()->close();
    ASSERT_EQ(host_.deleted.size(), 1U);
    EXPECT_EQ(host_.deleted.front().date, "2026-05-07");
    EXPECT_TRUE(host_.loaded.empty());
}

TEST_F(DateListMenuTest, may_be_rebuilt_while_a_menu_is_open) {
    render(1);
    askForMenu(*rows()[0]);
    const QPointer<QMenu> menu = openMenu();
    ASSERT_TRUE(menu);
    render(0);
    list_.renderDateList({}, "");
    deleteWhatIsDue();
    ASSERT_TRUE(menu);
    ASSERT_TRUE(menu->isVisible());
    QTest::mouseClick(menu, Qt::LeftButton, {},
                      menu->actionGeometry(menu->actions().back()).center());
    ASSERT_EQ(host_.deleted.size(), 1U);
    EXPECT_EQ(host_.deleted.front().date, "2026-05-08");
    EXPECT_EQ(host_.deleted.front().markerCount, 80);
    deleteWhatIsDue();
    EXPECT_TRUE(menu.isNull());
}

TEST_F(DateListMenuTest, may_go_while_its_menu_is_open) {
    auto list = std::make_unique<DateListView>(host_, nullptr);
    list->renderDateList(someDays(1), "");
    list->show();
    askForMenu(*dynamic_cast<DateRowView*>(list->childAt(50, 50)));
    const QPointer<QMenu> menu = openMenu();
    ASSERT_TRUE(menu);
    list.reset();
    EXPECT_TRUE(menu.isNull());
}

TEST_F(DateListViewTest, is_walked_by_tab_in_reading_order_also_after_it_was_rebuilt) {
    QPushButton after(&window_);
    after.show();
    render(2);
    render(2);
    rows()[0]->setFocus();
    for (const std::size_t next : {1U, 2U}) {
        QTest::keyClick(window_.focusWidget(), Qt::Key_Tab);
        EXPECT_EQ(window_.focusWidget(), rows()[next]);
    }
    QTest::keyClick(window_.focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(window_.focusWidget(), &after);
}

TEST_F(DateListViewTest, scrolls_to_the_row_that_tab_reaches) {
    render(30);
    rows()[0]->setFocus();
    for (int i = 0; i < 20; ++i) QTest::keyClick(window_.focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(window_.focusWidget(), rows()[20]);
    EXPECT_TRUE(list_.viewport()->rect().contains(
        QRect(rows()[20]->mapTo(list_.viewport(), QPoint()), rows()[20]->size())));
}

TEST_F(DateListViewTest, keeps_the_focus_on_the_day_that_return_loaded) {
    render(5);
    host_.onLoad = [this](const std::string& date) { list_.renderDateList(someDays(5), date); };
    rows()[3]->setFocus();
    QTest::keyClick(rows()[3], Qt::Key_Return);
    deleteWhatIsDue();
    EXPECT_EQ(host_.loaded, std::vector<std::string>{"2026-05-05"});
    EXPECT_EQ(window_.focusWidget(), rows()[3]);
}

TEST_F(DateListViewTest, leaves_the_focus_alone_at_a_click) {
    QPushButton elsewhere(&window_);
    elsewhere.show();
    elsewhere.setFocus();
    render(3);
    QTest::mouseClick(rows()[1], Qt::LeftButton);
    render(3);
    EXPECT_EQ(window_.focusWidget(), &elsewhere);
}

TEST_F(DateListViewTest, scrolls_40_points_a_notch_of_the_wheel) {
    render(60);
    turnWheel({}, {0, -120});
    EXPECT_EQ(list_.verticalScrollBar()->value(), 40);
    turnWheel({}, {0, 120});
    EXPECT_EQ(list_.verticalScrollBar()->value(), 0);
    for (int step = 0; step < 8; ++step) turnWheel({}, {0, -10});  // a fine wheel
    EXPECT_EQ(list_.verticalScrollBar()->value(), 26);
}

TEST_F(DateListViewTest, scrolls_by_what_a_touch_pad_gives) {
    render(60);
    turnWheel({0, -17}, {0, -120});
    EXPECT_EQ(list_.verticalScrollBar()->value(), 17);
}

}  // namespace
}  // namespace sonavault::testing
