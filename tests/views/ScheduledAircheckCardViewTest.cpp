#include "views/ScheduledAircheckCardView.h"

#include <gmock/gmock.h>

#include <QAbstractItemView>
#include <QImage>
#include <QTest>

#include "support/ExpectedQtWarnings.h"
#include "views/Hints.h"
#include "views/Theme.h"
#include "views/ViewProbe.h"

namespace sonavault::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A card on a screen of its own, and what it tells.
class ScheduledAircheckCardViewTest : public ::testing::Test {
  protected:
    ScheduledAircheckCardViewTest() { listenTo(view_); }

    void listenTo(ScheduledAircheckCardView& view) {
        view.onChange = [this](const ScheduledAircheckCard& card) { changes_.push_back(card); };
        view.show();
        view.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&view));
    }

    static ScheduledAircheckCard show() {
        auto card = ScheduledAircheckCard::newDraft();
        card.label = "Morning show";
        card.daysOfWeek = {1, 3, 7};
        card.startHour = 6;
        card.endHour = 9;
        card.mode = "liveMic";
        card.active = true;
        card.lastRunDate = "2026-05-08";
        return card;
    }

    /// From the lower left corner, as its frames are counted.
    static QRect frame(const QWidget& control) {
        const QRect box = control.geometry();
        return {box.x(), 300 - box.y() - box.height(), box.width(), box.height()};
    }

    static void click(QWidget* control) { QTest::mouseClick(control, Qt::LeftButton); }

    std::vector<bool> days() const {
        std::vector<bool> on;
        for (const auto* each : view_.dayChecks) on.push_back(each->isChecked());
        return on;
    }

    ScheduledAircheckCardView view_{show(), nullptr};
    std::vector<ScheduledAircheckCard> changes_;
};

TEST_F(ScheduledAircheckCardViewTest, shows_the_card) {
    EXPECT_EQ(view_.titleField->text(), "Morning show");
    EXPECT_TRUE(view_.activeCheck->isChecked());
    EXPECT_THAT(days(), ElementsAre(true, false, true, false, false, false, true));
    EXPECT_EQ(view_.startHourPop->currentText(), "06:00");
    EXPECT_EQ(view_.endHourPop->currentText(), "09:00");
    EXPECT_TRUE(view_.liveRadio->isChecked());
    EXPECT_FALSE(view_.vtRadio->isChecked());
    EXPECT_EQ(view_.lastRunLabel->text(), "Last exported: 2026-05-08");
    EXPECT_THAT(changes_, IsEmpty());
}

TEST_F(ScheduledAircheckCardViewTest, shows_a_mode_that_is_neither_as_voicetracks) {
    auto odd = show();
    odd.mode = "whatever";
    const ScheduledAircheckCardView view(odd, nullptr);
    EXPECT_TRUE(view.vtRadio->isChecked());
    EXPECT_FALSE(view.liveRadio->isChecked());
}

TEST_F(ScheduledAircheckCardViewTest, places_its_controls) {
    EXPECT_EQ(view_.size(), QSize(570, 300));
    EXPECT_EQ(frame(*view_.titleField), QRect(18, 252, 360, 36));
    EXPECT_EQ(frame(*view_.activeCheck), QRect(435, 255, 120, 30));
    for (int i = 0; i < 7; ++i)
        EXPECT_EQ(frame(*view_.dayChecks.at(static_cast<std::size_t>(i))),
                  QRect(90 + 57 * i, 198, 54, 30));
    EXPECT_EQ(frame(*view_.startHourPop), QRect(150, 138, 114, 36));
    EXPECT_EQ(frame(*view_.endHourPop), QRect(330, 138, 114, 36));
    EXPECT_EQ(frame(*view_.liveRadio), QRect(90, 87, 135, 30));
    EXPECT_EQ(frame(*view_.vtRadio), QRect(234, 87, 180, 30));
    EXPECT_EQ(frame(*view_.lastRunLabel), QRect(18, 21, 390, 24));
    EXPECT_EQ(frame(*view_.removeBtn), QRect(462, 15, 42, 42));
    EXPECT_EQ(frame(*view_.addBtn), QRect(510, 15, 42, 42));
}

TEST_F(ScheduledAircheckCardViewTest, places_its_words_so_that_none_is_cut) {
    struct Word {
        const char* text;
        QRect frame;
        int pixels;
    };
    const std::array words{
        Word{"Days:", {18, 198, 66, 27}, 18}, Word{"Hours:", {18, 144, 66, 27}, 18},
        Word{"Start", {90, 144, 60, 27}, 16}, Word{"End", {282, 144, 48, 27}, 16},
        Word{"Mode:", {18, 90, 66, 27}, 18}};
    const auto labels = allOf<TextView>(view_);
    for (const auto& word : words) {
        const auto found = std::find_if(labels.begin(), labels.end(), [&](const auto* each) {
            return each->text() == QLatin1String(word.text);
        });
        ASSERT_NE(found, labels.end()) << word.text;
        EXPECT_EQ(frame(**found), word.frame) << word.text;
        EXPECT_EQ((*found)->font().pixelSize(), word.pixels) << word.text;
    }
    for (const auto* each : labels)
        EXPECT_LE(each->sizeHint().width(), each->width()) << each->text().toStdString();
    for (auto* each : view_.findChildren<QAbstractButton*>()) {
        const int mark = each->isCheckable() ? 28 : 0;
        EXPECT_LE(QFontMetrics(each->font()).horizontalAdvance(each->text()), each->width() - mark)
            << each->text().toStdString();
    }
}

TEST_F(ScheduledAircheckCardViewTest, uses_the_given_faces) {
    EXPECT_EQ(view_.titleField->font(), interfaceFont(21, QFont::DemiBold));
    EXPECT_EQ(view_.activeCheck->font(), interfaceFont(18, QFont::Medium));
    EXPECT_EQ(view_.dayChecks[0]->font(), interfaceFont(16, QFont::Medium));
    EXPECT_EQ(view_.startHourPop->font(), interfaceFont(16));
    EXPECT_EQ(view_.vtRadio->font(), interfaceFont(16));
    EXPECT_EQ(view_.addBtn->font(), interfaceFont(20, QFont::Bold));
}

TEST_F(ScheduledAircheckCardViewTest, explains_every_control) {
    EXPECT_EQ(svHint(*view_.titleField),
              "Name for this aircheck — also used in the saved filename.");
    EXPECT_EQ(svHint(*view_.activeCheck),
              "Turn this aircheck rule on or off. Off pauses without deleting.");
    const std::array<QString, 7> kDays{"Monday", "Tuesday",  "Wednesday", "Thursday",
                                       "Friday", "Saturday", "Sunday"};
    for (std::size_t i = 0; i < 7; ++i)
        EXPECT_EQ(svHint(*view_.dayChecks.at(i)), "Capture this aircheck on " + kDays.at(i) + ".");
    EXPECT_EQ(svHint(*view_.startHourPop), "First hour of the aircheck window (inclusive).");
    EXPECT_EQ(svHint(*view_.endHourPop), "Last hour of the aircheck window (inclusive).");
    EXPECT_EQ(svHint(*view_.liveRadio), "Capture only the moments the live mic was open.");
    EXPECT_EQ(svHint(*view_.vtRadio), "Capture only the pre-recorded voicetrack moments.");
    EXPECT_EQ(svHint(*view_.lastRunLabel), "Most recent date this aircheck was exported.");
    EXPECT_EQ(svHint(*view_.removeBtn), "Remove this aircheck card.");
    EXPECT_EQ(svHint(*view_.addBtn), "Add another aircheck card below this one.");
    std::map<QString, QString> words;
    for (const auto* each : allOf<TextView>(view_)) words[each->text()] = svHint(*each);
    EXPECT_EQ(words["Days:"], "Which days of the week to capture this aircheck on.");
    EXPECT_EQ(words["Hours:"], "Start and end hours of the daypart to capture.");
    EXPECT_EQ(words["Start"], "First hour of the aircheck window (inclusive).");
    EXPECT_EQ(words["End"], "Last hour of the aircheck window (inclusive).");
    EXPECT_EQ(words["Mode:"], "Which marker spans to include in the saved MP3.");
    for (const auto* each : view_.findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
        EXPECT_FALSE(each->accessibleName().isEmpty()) << each->metaObject()->className();
}

TEST_F(ScheduledAircheckCardViewTest, takes_a_name_on_return_and_when_the_field_is_left) {
    click(view_.titleField);
    QTest::keyClick(view_.titleField, Qt::Key_End);
    QTest::keyClicks(view_.titleField, " 2");
    EXPECT_THAT(changes_, IsEmpty());
    QTest::keyClick(view_.titleField, Qt::Key_Return);
    ASSERT_EQ(changes_.size(), 1u);
    EXPECT_EQ(changes_[0].label, "Morning show 2");
    QTest::keyClicks(view_.titleField, "3");
    QTest::keyClick(view_.titleField, Qt::Key_Tab);
    ASSERT_EQ(changes_.size(), 2u);
    EXPECT_EQ(changes_[1].label, "Morning show 23");
    EXPECT_TRUE(view_.activeCheck->hasFocus());
}

TEST_F(ScheduledAircheckCardViewTest, says_nothing_of_a_name_that_was_not_changed) {
    click(view_.titleField);
    QTest::keyClick(view_.titleField, Qt::Key_Tab);
    EXPECT_THAT(changes_, IsEmpty());
}

TEST_F(ScheduledAircheckCardViewTest, another_control_takes_a_typed_name_with_it) {
    click(view_.titleField);
    view_.titleField->selectAll();
    QTest::keyClicks(view_.titleField, "Night");
    click(view_.activeCheck);
    ASSERT_EQ(changes_.size(), 1u);
    EXPECT_EQ(changes_[0].label, "Night");
    EXPECT_FALSE(changes_[0].active);
    EXPECT_TRUE(view_.titleField->hasFocus());
}

TEST_F(ScheduledAircheckCardViewTest, switches_days_and_keeps_them_in_order) {
    click(view_.dayChecks[4]);
    click(view_.dayChecks[0]);
    ASSERT_EQ(changes_.size(), 2u);
    EXPECT_THAT(changes_[0].daysOfWeek, ElementsAre(1, 3, 5, 7));
    EXPECT_THAT(changes_[1].daysOfWeek, ElementsAre(3, 5, 7));
    EXPECT_THAT(days(), ElementsAre(false, false, true, false, true, false, true));
}

TEST_F(ScheduledAircheckCardViewTest, a_day_clicked_again_and_again_is_there_once) {
    for (int i = 0; i < 3; ++i) click(view_.dayChecks[1]);
    EXPECT_THAT(view_.card().daysOfWeek, ElementsAre(1, 2, 3, 7));
}

TEST_F(ScheduledAircheckCardViewTest, acts_wherever_a_check_is_clicked) {
    QTest::mouseClick(view_.activeCheck, Qt::LeftButton, {}, QPoint(118, 2));
    EXPECT_FALSE(view_.activeCheck->isChecked());
    ASSERT_EQ(changes_.size(), 1u);
    EXPECT_FALSE(changes_[0].active);
}

TEST_F(ScheduledAircheckCardViewTest, chooses_hours_from_the_list) {
    // There is no window manager to put the list in front.
    const ExpectedQtWarnings raise("This plugin does not support raise()");
    const ExpectedQtWarnings grab("This plugin does not support grabbing the keyboard");
    EXPECT_EQ(view_.startHourPop->count(), 24);
    EXPECT_EQ(view_.startHourPop->itemText(0), "00:00");
    EXPECT_EQ(view_.endHourPop->itemText(23), "23:00");
    click(view_.startHourPop);
    auto* list = view_.startHourPop->view();
    ASSERT_TRUE(list->isVisible());
    QTest::keyClick(list, Qt::Key_Down);
    QTest::keyClick(list, Qt::Key_Return);
    ASSERT_EQ(changes_.size(), 1u);
    EXPECT_EQ(changes_[0].startHour, 7);
    view_.endHourPop->setFocus(Qt::TabFocusReason);
    QTest::keyClick(view_.endHourPop, Qt::Key_Down);
    ASSERT_EQ(changes_.size(), 2u);
    EXPECT_EQ(changes_[1].endHour, 10);
}

TEST_F(ScheduledAircheckCardViewTest, chooses_the_mode) {
    click(view_.vtRadio);
    ASSERT_EQ(changes_.size(), 1u);
    EXPECT_EQ(changes_[0].mode, "voicetracked");
    EXPECT_FALSE(view_.liveRadio->isChecked());
    click(view_.liveRadio);
    ASSERT_EQ(changes_.size(), 2u);
    EXPECT_EQ(changes_[1].mode, "liveMic");
    EXPECT_FALSE(view_.vtRadio->isChecked());
}

TEST_F(ScheduledAircheckCardViewTest, tells_of_its_buttons) {
    int added = 0;
    int removed = 0;
    view_.onAddBelow = [&] { ++added; };
    view_.onRemove = [&] { ++removed; };
    click(view_.addBtn);
    EXPECT_EQ(added, 1);
    click(view_.removeBtn);
    EXPECT_EQ(removed, 1);
    EXPECT_THAT(changes_, IsEmpty());
}

TEST_F(ScheduledAircheckCardViewTest, works_with_nobody_listening) {
    ScheduledAircheckCardView alone(show(), nullptr);
    alone.show();
    for (QWidget* each :
         std::initializer_list<QWidget*>{alone.activeCheck, alone.addBtn, alone.removeBtn})
        click(each);
    EXPECT_FALSE(alone.card().active);
}

TEST_F(ScheduledAircheckCardViewTest, is_worked_in_the_order_of_reading_with_the_tab_key) {
    view_.titleField->setFocus(Qt::TabFocusReason);
    std::vector<QWidget*> order;
    for (QWidget* at = view_.titleField; order.size() < 14; at = view_.focusWidget()) {
        order.push_back(at);
        QTest::keyClick(at, Qt::Key_Tab);
    }
    // Of a pair of which one is on, the Tab key stops at that one.
    const std::vector<QWidget*> expected{view_.titleField,   view_.activeCheck,  view_.dayChecks[0],
                                         view_.dayChecks[1], view_.dayChecks[2], view_.dayChecks[3],
                                         view_.dayChecks[4], view_.dayChecks[5], view_.dayChecks[6],
                                         view_.startHourPop, view_.endHourPop,   view_.liveRadio,
                                         view_.removeBtn,    view_.addBtn};
    EXPECT_EQ(order, expected);
}

TEST_F(ScheduledAircheckCardViewTest, is_white_with_a_grey_border_and_round_corners) {
    view_.setAttribute(Qt::WA_TranslucentBackground);
    const QImage seen = view_.grab().toImage();
    EXPECT_EQ(seen.pixelColor(400, 100), QColor(Qt::white));
    EXPECT_EQ(seen.pixelColor(0, 150), whiteLevel(0.85));
    EXPECT_EQ(seen.pixelColor(569, 150), whiteLevel(0.85));
    EXPECT_EQ(seen.pixelColor(285, 0), whiteLevel(0.85));
    EXPECT_EQ(seen.pixelColor(285, 299), whiteLevel(0.85));
    EXPECT_EQ(seen.pixelColor(1, 150), QColor(Qt::white));
    EXPECT_LT(seen.pixelColor(0, 0).alpha(), 40);
}

TEST_F(ScheduledAircheckCardViewTest, shows_in_blue_what_is_chosen) {
    const auto groundOf = [](QWidget* mark) {
        return mark->grab().toImage().pixelColor(6, mark->height() / 2 - 5);
    };
    EXPECT_EQ(groundOf(view_.dayChecks[0]), QColor(0, 112, 245));
    EXPECT_EQ(groundOf(view_.dayChecks[1]), QColor(Qt::white));
    EXPECT_EQ(groundOf(view_.liveRadio), QColor(0, 112, 245));
}

TEST_F(ScheduledAircheckCardViewTest, the_buttons_darken_while_they_are_pressed) {
    const auto ground = [this] { return view_.addBtn->grab().toImage().pixelColor(8, 8); };
    const QColor before = ground();
    QTest::mousePress(view_.addBtn, Qt::LeftButton);
    EXPECT_LT(ground().lightness(), before.lightness());
    QTest::mouseRelease(view_.addBtn, Qt::LeftButton, {}, QPoint(-20, 0));
    EXPECT_THAT(changes_, IsEmpty());
}

TEST_F(ScheduledAircheckCardViewTest, rings_the_control_that_the_keyboard_is_at) {
    view_.setAttribute(Qt::WA_KeyboardFocusChange);  // as the Tab key does
    const auto ringed = [](QWidget* control) {
        control->clearFocus();
        const QImage before = control->grab().toImage();
        control->setFocus(Qt::TabFocusReason);
        return control->grab().toImage() != before;
    };
    for (QWidget* each :
         std::initializer_list<QWidget*>{view_.titleField, view_.activeCheck, view_.dayChecks[2],
                                         view_.startHourPop, view_.liveRadio, view_.removeBtn})
        EXPECT_TRUE(ringed(each)) << each->accessibleName().toStdString();
}

}  // namespace
}  // namespace sonavault::testing
