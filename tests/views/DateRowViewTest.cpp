#include "views/DateRowView.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QTest>

#include "views/FakeDateListHost.h"
#include "views/PaintCounter.h"

namespace sonavault::testing {
namespace {

constexpr QColor kRec{229, 85, 85};
constexpr QColor kAmber{229, 165, 64};
constexpr QColor kRule{236, 236, 236};
constexpr QColor kSelected{220, 232, 241};
constexpr QPoint kIndicatorMiddle{20, 22};

DailyRecording pastDay() {
    return {.date = "2026-05-07", .dayOfWeek = "Thu", .recorded = "24:00", .markerCount = 213};
}

DailyRecording today() {
    return {.date = "2026-05-08",
            .dayOfWeek = "Fri",
            .live = true,
            .recorded = "12:00",
            .markerCount = 80};
}

class DateRowViewTest : public ::testing::Test {
  protected:
    std::unique_ptr<DateRowView> rowOf(const DailyRecording& recording) {
        auto row = std::make_unique<DateRowView>(recording, host_, nullptr);
        row->resize(280, row->rowHeight());
        return row;
    }

    /// The row on white ground.
    static QImage imageOf(DateRowView& row) {
        QImage image(row.size(), QImage::Format_ARGB32);
        image.fill(Qt::white);
        row.render(&image, {}, {}, QWidget::DrawChildren);
        return image;
    }

    QStringList menuOf(const DateRowView& row) {
        QWidget parent;
        QStringList texts;
        for (const QAction* each : row.makeMenu(&parent)->actions())
            texts << (each->isSeparator() ? QStringLiteral("-") : each->text());
        return texts;
    }

    FakeDateListHost host_;
};

/// The columns in which a part of the image has ink of about that colour.
std::pair<int, int> inkedColumns(const QImage& image, const QRect& part, const QColor& colour) {
    int first = -1;
    int last = -1;
    for (int x = part.left(); x <= part.right(); ++x)
        for (int y = part.top(); y <= part.bottom(); ++y) {
            const QColor ink = image.pixelColor(x, y);
            if (std::abs(ink.red() - colour.red()) > 12 ||
                std::abs(ink.green() - colour.green()) > 12 ||
                std::abs(ink.blue() - colour.blue()) > 12)
                continue;
            if (first < 0) first = x;
            last = x;
        }
    return {first, last};
}

TEST_F(DateRowViewTest, is_as_high_as_its_lines) {
    auto day = pastDay();
    EXPECT_EQ(rowOf(day)->rowHeight(), 61);
    day.warning = "Gap";
    EXPECT_EQ(rowOf(day)->rowHeight(), 79);
    day.expiresInDays = 3;
    EXPECT_EQ(rowOf(day)->rowHeight(), 97);
}

TEST_F(DateRowViewTest, has_an_empty_ring_on_a_past_day) {
    const QImage image = imageOf(*rowOf(pastDay()));
    EXPECT_EQ(image.pixelColor(kIndicatorMiddle), QColor(Qt::white));
    EXPECT_LT(image.pixelColor(14, 22).lightness(), 210);
    EXPECT_LT(image.pixelColor(25, 22).lightness(), 210);
    EXPECT_EQ(image.pixelColor(13, 22), QColor(Qt::white));
    EXPECT_EQ(image.pixelColor(26, 22), QColor(Qt::white));
}

TEST_F(DateRowViewTest, has_a_red_light_on_today_while_recording_runs) {
    const auto row = rowOf(today());
    EXPECT_EQ(imageOf(*row).pixelColor(kIndicatorMiddle), QColor(Qt::white));
    host_.recording = true;
    row->updateRecordingIndicator();
    EXPECT_EQ(imageOf(*row).pixelColor(kIndicatorMiddle), kRec);
    host_.recording = false;
    row->updateRecordingIndicator();
    EXPECT_EQ(imageOf(*row).pixelColor(kIndicatorMiddle), QColor(Qt::white));
}

TEST_F(DateRowViewTest, has_an_amber_light_for_a_warning_unless_it_is_being_recorded) {
    host_.recording = true;
    auto past = pastDay();
    past.warning = "Gap at 03:12";
    EXPECT_EQ(imageOf(*rowOf(past)).pixelColor(kIndicatorMiddle), kAmber);
    auto live = today();
    live.warning = "Gap at 03:12";
    EXPECT_EQ(imageOf(*rowOf(live)).pixelColor(kIndicatorMiddle), kRec);
}

TEST_F(DateRowViewTest, has_a_rule_at_its_foot) {
    const QImage image = imageOf(*rowOf(pastDay()));
    EXPECT_EQ(image.pixelColor(0, 60), kRule);
    EXPECT_EQ(image.pixelColor(279, 60), kRule);
    EXPECT_EQ(image.pixelColor(0, 59), QColor(Qt::white));
}

TEST_F(DateRowViewTest, has_a_bar_as_long_as_the_recording_of_today) {
    const QImage image = imageOf(*rowOf(today()));
    const QColor bar(241, 161, 161);  // red at 55 % over white
    for (const int y : {0, 1}) {
        for (const int x : {0, 139}) {
            EXPECT_NEAR(image.pixelColor(x, y).red(), bar.red(), 1);
            EXPECT_NEAR(image.pixelColor(x, y).green(), bar.green(), 1);
        }
        EXPECT_EQ(image.pixelColor(140, y), QColor(Qt::white));
    }
    EXPECT_EQ(image.pixelColor(0, 2), QColor(Qt::white));
}

TEST_F(DateRowViewTest, has_a_bar_over_its_whole_width_at_most) {
    auto day = today();
    day.recorded = "24:30";
    EXPECT_NE(imageOf(*rowOf(day)).pixelColor(279, 0), QColor(Qt::white));
}

TEST_F(DateRowViewTest, has_no_bar_without_a_length_nor_on_a_past_day) {
    auto day = today();
    day.recorded = "";
    EXPECT_EQ(imageOf(*rowOf(day)).pixelColor(0, 0), QColor(Qt::white));
    EXPECT_EQ(imageOf(*rowOf(pastDay())).pixelColor(0, 0), QColor(Qt::white));
}

TEST_F(DateRowViewTest, shows_its_selection_under_everything) {
    const auto row = rowOf(today());
    row->setSelected(true);
    const QImage image = imageOf(*row);
    EXPECT_EQ(image.pixelColor(4, 30), kSelected);
    EXPECT_EQ(image.pixelColor(279, 59), kSelected);
    EXPECT_EQ(image.pixelColor(279, 60), kRule);
    EXPECT_NE(image.pixelColor(0, 0), kSelected);
    row->setSelected(false);
    EXPECT_EQ(imageOf(*row).pixelColor(4, 30), QColor(Qt::white));
}

TEST_F(DateRowViewTest, writes_the_date_and_what_there_is_of_it) {
    const QImage image = imageOf(*rowOf(pastDay()));
    const auto title = inkedColumns(image, {30, 9, 250, 20}, {26, 26, 26});
    EXPECT_NEAR(title.first, 35, 2);
    EXPECT_LT(title.second, 160);  // where "TODAY" begins
    const auto meta = inkedColumns(image, {30, 31, 250, 18}, {102, 102, 102});
    EXPECT_NEAR(meta.first, 35, 2);
    EXPECT_GT(meta.second, 170);
}

TEST_F(DateRowViewTest, says_today_on_a_live_row_only) {
    const QRect place(162, 11, 60, 16);
    const auto tag = inkedColumns(imageOf(*rowOf(today())), place, {115, 115, 115});
    EXPECT_NEAR(tag.first, 163, 2);
    EXPECT_GT(tag.second, 180);
    EXPECT_EQ(inkedColumns(imageOf(*rowOf(pastDay())), place, {115, 115, 115}).first, -1);
}

TEST_F(DateRowViewTest, paints_a_sign_before_a_warning) {
    auto day = pastDay();
    day.warning = "Gap at 03:12";
    const auto row = rowOf(day);
    const QImage image = imageOf(*row);
    const auto sign = inkedColumns(image, {34, 55, 13, 12}, {197, 120, 32});
    EXPECT_NEAR(sign.first, 34, 1);
    EXPECT_NEAR(sign.second, 46, 1);
    EXPECT_GT(inkedColumns(image, {50, 51, 224, 18}, {197, 120, 32}).second, 100);
    EXPECT_TRUE(row->accessibleName().contains(QStringLiteral("⚠ Gap at 03:12")));
}

TEST_F(DateRowViewTest, cuts_a_long_warning_within_its_frame) {
    auto day = pastDay();
    day.warning = std::string(200, 'M');
    const QImage image = imageOf(*rowOf(day));
    EXPECT_EQ(inkedColumns(image, {275, 51, 5, 18}, {197, 120, 32}).first, -1);
    EXPECT_GT(inkedColumns(image, {50, 51, 224, 18}, {197, 120, 32}).second, 240);
}

TEST_F(DateRowViewTest, has_level_lights_on_a_live_row_only) {
    host_.inputDb = -20;
    const auto live = rowOf(today());
    EXPECT_EQ(imageOf(*live).pixelColor(233, 19), QColor(96, 137, 171));
    EXPECT_EQ(imageOf(*live).pixelColor(245, 19), QColor(168, 144, 120));
    EXPECT_EQ(imageOf(*live).pixelColor(257, 19), QColor(199, 199, 199));
    EXPECT_EQ(imageOf(*rowOf(pastDay())).pixelColor(233, 19), QColor(Qt::white));
}

TEST_F(DateRowViewTest, is_clicked_through_its_level_lights) {
    const auto row = rowOf(today());
    EXPECT_EQ(row->childAt(240, 19), nullptr);
}

TEST_F(DateRowViewTest, takes_another_length_and_count_in_place) {
    const auto row = rowOf(today());
    auto later = today();
    later.recorded = "18:00";
    later.markerCount = 81;
    row->updateLive(later);
    EXPECT_EQ(row->recording().markerCount, 81);
    EXPECT_EQ(row->accessibleName(), QStringLiteral("2026-05-08 Fri, TODAY, 18:00 recorded · 81 "
                                                    "markers"));
    EXPECT_NE(imageOf(*row).pixelColor(209, 0), QColor(Qt::white));
    EXPECT_EQ(imageOf(*row).pixelColor(210, 0), QColor(Qt::white));
}

TEST_F(DateRowViewTest, does_not_draw_when_nothing_changed) {
    const auto row = rowOf(today());
    row->setSelected(true);
    row->show();
    PaintCounter paints(*row);
    row->setSelected(true);
    row->updateRecordingIndicator();
    row->updateLevels();
    EXPECT_EQ(paints.take(), 0);
    host_.recording = true;
    row->updateRecordingIndicator();
    EXPECT_EQ(paints.take(), 1);
    row->updateLive(today());
    EXPECT_EQ(paints.take(), 1);
}

TEST_F(DateRowViewTest, offers_to_stop_or_to_start_on_a_live_row) {
    EXPECT_EQ(menuOf(*rowOf(today())),
              QStringList({"Start Recording", "-", "Delete 2026-05-08 (Fri)…"}));
    host_.recording = true;
    EXPECT_EQ(menuOf(*rowOf(today())),
              QStringList({"Stop Recording", "-", "Delete 2026-05-08 (Fri)…"}));
}

TEST_F(DateRowViewTest, offers_only_to_delete_a_past_day) {
    host_.recording = true;
    EXPECT_EQ(menuOf(*rowOf(pastDay())), QStringList({"Delete 2026-05-07 (Thu)…"}));
}

TEST_F(DateRowViewTest, does_what_the_menu_says) {
    QWidget parent;
    const auto row = rowOf(today());
    const QMenu* menu = row->makeMenu(&parent);
    menu->actions().front()->trigger();
    EXPECT_EQ(host_.toggled, 1);
    menu->actions().back()->trigger();
    ASSERT_EQ(host_.deleted.size(), 1U);
    EXPECT_EQ(host_.deleted.front().date, "2026-05-08");
}

TEST_F(DateRowViewTest, is_reached_by_tab_but_not_by_a_click) {
    const auto row = rowOf(pastDay());
    EXPECT_EQ(row->focusPolicy(), Qt::TabFocus);
    std::vector<std::string> clicked;
    row->onClicked = [&](const std::string& date) { clicked.push_back(date); };
    QTest::keyClick(row.get(), Qt::Key_Return);
    QTest::keyClick(row.get(), Qt::Key_Enter);
    QTest::keyClick(row.get(), Qt::Key_A);
    QTest::mouseClick(row.get(), Qt::LeftButton);
    QTest::mouseClick(row.get(), Qt::RightButton);
    EXPECT_EQ(clicked, (std::vector<std::string>(3, "2026-05-07")));
}

}  // namespace
}  // namespace sonavault::testing
